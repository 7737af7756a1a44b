#include "broker/plugin/time_budget_t.h"

#include <algorithm>

namespace broker::plugin {

bool time_budget_t::allows(span_t _needed, std::chrono::milliseconds _now) {
    // One part in fifty of the time that has passed.
    const auto earned = std::chrono::duration_cast<span_t>(_now - refilled) / 50;
    refilled = _now;
    left = std::min(left + std::max(earned, span_t(0)), 2 * at_once);
    return _needed <= at_once && _needed <= left;
}

}  // namespace broker::plugin
