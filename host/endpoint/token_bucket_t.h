#pragma once

#include <chrono>

namespace comunication {

/// A token bucket: what it holds grows with time up to a second's worth, and whoever comes while it
/// holds anything is served, even on credit. Pure but for its level.
class token_bucket_t {
 public:
    /// @p _per_second what flows in; 0: no limit.
    explicit token_bucket_t(double _per_second) : per_second(_per_second), level(_per_second) {}

    /// Whether @p _cost is granted at @p _now, a clock that never goes back.
    bool take(double _cost, std::chrono::milliseconds _now);

 private:
    double per_second;
    double level;
    std::chrono::milliseconds filled{0};
};

}  // namespace comunication
