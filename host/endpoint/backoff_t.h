#pragma once

#include <chrono>

namespace comunication {

/// Waiting times between attempts: they double up to a limit, and each is drawn at random between
/// its half and its whole, so that many clients of one broker do not come back at once.
class backoff_t {
 public:
    using milliseconds = std::chrono::milliseconds;

    /// @p _shortest at least 1 ms; @p _longest at least @p _shortest.
    backoff_t(milliseconds _shortest, milliseconds _longest);

    /// The next waiting time.
    milliseconds next();

    /// Starts again with the shortest one.
    void reset();

 private:
    milliseconds shortest;
    milliseconds longest;
    milliseconds upper;  ///< whole of the next waiting time
};

}  // namespace comunication
