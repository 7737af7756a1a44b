#pragma once

#include <cstddef>

namespace comunication {

/// What API users may ask of the endpoint; each limit is one user's unless it says otherwise. What
/// exceeds one is answered with an error and counted, and never reaches a driver.
struct request_limits_t {
    std::size_t request_bytes = 1024 * 1024;  ///< of one payload
    std::size_t filter_entries = 1'000;       ///< of one list of types or functions
    std::size_t value_bytes = 1'024;          ///< of one text in "data", as UTF-8

    std::size_t waiting_requests = 1'000;         ///< until it is their turn
    std::size_t waiting_bytes = 2 * 1024 * 1024;  ///< topics and payloads of these
    std::size_t waiting_bytes_of_all = 64 * 1024 * 1024;
    double requests_per_second = 0;  ///< in the long run; bursts of a second's worth. 0: no limit

    /// Users whose requests drivers have got and not worked off: one of each, or some small ones.
    /// Two keep them busy, and a request of somebody else never waits for more than these.
    int at_once = 2;
    /// Refusals answered a second, in bytes of what is refused: to find a request's uuid it has to
    /// be read. What is above is refused without a word.
    double refused_bytes_per_second = 1024 * 1024;

    /// What one user may publish, judged by the broker: what is above goes no further, and who goes
    /// on is sent away. Bytes may come in bursts of four seconds' worth. 0: no limit.
    int publishes_per_second = 1'000;
    int publish_bytes_per_second = 2 * 1024 * 1024;
};

}  // namespace comunication
