#pragma once

#include <algorithm>
#include <chrono>

namespace base {

/// A token bucket: what it holds grows with time up to a second's worth, and whoever comes while it
/// holds anything is served, even on credit. Pure but for its level.
class token_bucket_t {
 public:
    /// @p _per_second what flows in; 0: no limit.
    explicit token_bucket_t(double _per_second) : per_second(_per_second), level(_per_second) {}

    /// Whether @p _cost is granted at @p _now, a clock that never goes back.
    bool take(double _cost, std::chrono::milliseconds _now) {
        if (per_second <= 0) {
            return true;
        }
        const double passed = std::chrono::duration<double>(_now - filled).count();
        level = std::min(per_second, level + passed * per_second);
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
        return per_second <= 0 || level + passed * per_second >= per_second;
    }

 private:
    double per_second;
    double level;
    std::chrono::milliseconds filled{0};
};

}  // namespace base
