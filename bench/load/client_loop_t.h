#pragma once

#include <poll.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <vector>

namespace bench {

class load_client_t;

/// Serves several clients in the thread that runs it.
class client_loop_t {
 public:
    using clock_t = std::chrono::steady_clock;

    /// It must outlive this loop.
    void add(load_client_t* _client);

    /// Until @p _done, which is asked after every turn. False: the limit has passed, a client lost
    /// its connection, or stop() was called.
    bool run(const std::function<bool()>& _done, clock_t::duration _limit);

    /// Ends every loop of the process, from any thread.
    static void stop() { stopped = true; }
    static bool is_stopped() { return stopped; }

 private:
    bool turn(clock_t::time_point _limit);
    void tend();

    static inline std::atomic<bool> stopped{false};
    std::vector<load_client_t*> clients;
    std::vector<pollfd> sockets;
    clock_t::time_point tended = clock_t::now();
};

}  // namespace bench
