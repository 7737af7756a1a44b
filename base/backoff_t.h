#pragma once

#include <QRandomGenerator>
#include <algorithm>
#include <chrono>

namespace base {

/// Waiting times between attempts: they double up to a limit, and each is drawn at random between
/// its half and its whole, so that many who wait for one thing do not come back at once.
class backoff_t {
 public:
    using milliseconds = std::chrono::milliseconds;

    /// @p _shortest at least 1 ms; @p _longest at least @p _shortest.
    backoff_t(milliseconds _shortest, milliseconds _longest)
        : shortest(std::max(_shortest, milliseconds(1))),
          longest(std::max(_longest, shortest)),
          upper(shortest) {}

    /// The next waiting time.
    milliseconds next() {
        const qint64 whole = upper.count();
        upper = std::min(upper * 2, longest);
        const qint64 half = whole - whole / 2;
        return milliseconds(half + QRandomGenerator::global()->bounded(whole / 2 + 1));
    }

    /// Starts again with the shortest one.
    void reset() { upper = shortest; }

 private:
    milliseconds shortest;
    milliseconds longest;
    milliseconds upper;  ///< whole of the next waiting time
};

}  // namespace base
