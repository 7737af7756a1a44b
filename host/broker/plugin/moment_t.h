#pragma once

#include <chrono>
#include <ctime>
#include <functional>

namespace broker::plugin {

/// Now, by the clock that never goes back and by the one that people read.
struct moment_t {
    std::chrono::milliseconds steady{0};
    std::time_t wall = 0;
};

using clock_t = std::function<moment_t()>;

}  // namespace broker::plugin
