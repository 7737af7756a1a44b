#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "bench/load/client_loop_t.h"
#include "bench/load/load_client_t.h"

namespace bench {

/// Users who listen to their states, and what each has heard of "e-0", "e-1" and so on.
class state_watch_t {
 public:
    using clock_t = client_loop_t::clock_t;

    state_watch_t(std::vector<door_t> _users, std::size_t _elements);
    ~state_watch_t();

    /// Waits so long for the broker to be there.
    bool sign_in(std::chrono::seconds _limit, int _qos);
    /// Serves them until @p _done or the limit.
    bool run(const std::function<bool()>& _done, clock_t::duration _limit);

    /// Called for each state of the first user.
    std::function<void(std::size_t _element, long _value)> on_first;

    /// How many states were heard of at least once, over all users. Any thread.
    std::size_t heard() const { return heard_count; }
    std::size_t expected() const { return doors.size() * elements; }
    /// The last value of each element that each user has heard; -1: none, -2: it was deleted.
    const std::vector<std::vector<long>>& values() const { return last; }
    std::size_t state_bytes() const { return bytes; }
    /// When a state was last heard of for the first time.
    clock_t::time_point last_new() const { return end; }

 private:
    void hear(std::size_t _user, std::string_view _topic, std::string_view _payload);

    const std::vector<door_t> doors;
    const std::size_t elements;
    std::vector<std::unique_ptr<load_client_t>> clients;
    client_loop_t loop;
    std::vector<std::vector<long>> last;  ///< by user and element
    std::atomic<std::size_t> heard_count{0};
    std::size_t bytes = 0;
    clock_t::time_point end = clock_t::now();
};

}  // namespace bench
