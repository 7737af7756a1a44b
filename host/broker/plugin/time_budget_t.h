#pragma once

#include <chrono>

namespace broker::plugin {

/// How much of its time the broker's only thread may give to passwords: one part in fifty in all,
/// and a bounded stretch at once.
class time_budget_t {
 public:
    using span_t = std::chrono::microseconds;

    /// @p _at_once 0: never.
    explicit time_budget_t(span_t _at_once) : at_once(_at_once), left(2 * _at_once) {}

    /// Whether a check that takes about @p _needed may be made.
    bool allows(span_t _needed, std::chrono::milliseconds _now);

    /// What it took in fact.
    void spend(span_t _took) { left -= _took; }

 private:
    const span_t at_once;
    span_t left;
    std::chrono::milliseconds refilled{0};
};

}  // namespace broker::plugin
