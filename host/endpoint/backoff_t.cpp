#include "endpoint/backoff_t.h"

#include <QRandomGenerator>
#include <algorithm>

namespace comunication {

backoff_t::backoff_t(milliseconds _shortest, milliseconds _longest)
    : shortest(std::max(_shortest, milliseconds(1))),
      longest(std::max(_longest, shortest)),
      upper(shortest) {}

backoff_t::milliseconds backoff_t::next() {
    const auto whole = upper.count();
    upper = std::min(upper * 2, longest);
    const auto half = whole - whole / 2;
    return milliseconds(half + QRandomGenerator::global()->bounded(qint64(whole / 2 + 1)));
}

void backoff_t::reset() {
    upper = shortest;
}

}  // namespace comunication
