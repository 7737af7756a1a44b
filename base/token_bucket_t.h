#pragma once

#include <algorithm>
#include <chrono>

namespace base {

/// A token bucket: what it holds grows with time up to a second's worth or some, and whoever comes
/// while it holds anything is served, even on credit. Pure but for its level.
class token_bucket_t {
 public:
    /// @p _per_second what flows in; 0: no limit. @p _seconds how much of it is kept.
    explicit token_bucket_t(double _per_second, double _seconds = 1)
        : per_second(_per_second), most(_per_second * _seconds), level(most) {}

    /// Whether @p _cost is granted at @p _now, a clock that never goes back.
    bool take(double _cost, std::chrono::milliseconds _now) {
        if (per_second <= 0) {
            return true;
        }
        const double passed = std::chrono::duration<double>(_now - filled).count();
        level = std::min(most, level + passed * per_second);
        filled = _now;
        if (level <= 0) {
            return false;
        }
        level -= _cost;
        return true;
    }

    /// Nothing was taken for so long that it is as a new one.
    bool is_full(std::chrono::milliseconds _now) const {
        const double passed = std::chrono::duration<double>(_now - filled).count();
        return per_second <= 0 || level + passed * per_second >= most;
    }

 private:
    double per_second;
    double most;
    double level;
    std::chrono::milliseconds filled{0};
};

}  // namespace base
