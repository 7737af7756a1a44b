#pragma once

#include <functional>

namespace bench {

/// Runs @p _work in a thread of its own and handles this thread's events meanwhile: the broker is
/// looked after, and Ctrl-C is heard. What @p _work says.
bool beside(const std::function<bool()>& _work);

}  // namespace bench
