#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "broker/plugin/check_queue_t.h"

namespace broker::plugin {

/// Compares passwords in a thread of its own, with less claim to a processor than the broker.
class password_worker_t {
 public:
    password_worker_t();
    /// Waits for the check that is running.
    ~password_worker_t();
    password_worker_t(const password_worker_t&) = delete;
    password_worker_t& operator=(const password_worker_t&) = delete;

    /// The verdict comes with take(), later; whose will not come is returned.
    std::vector<visitor_t> submit(password_check_t _check);

    /// What was found since the last call.
    std::vector<password_verdict_t> take();

    /// Until nothing waits or runs, or @p _limit has passed: true, nothing does.
    bool wait_idle(std::chrono::microseconds _limit);
    bool is_idle();

    /// How long a check takes, judged by former ones.
    std::chrono::microseconds estimate(std::uint32_t _iterations);
    /// One that was made elsewhere took that long.
    void learn(std::uint32_t _iterations, std::chrono::nanoseconds _took);

 private:
    void run();
    void follow(std::uint32_t _iterations, std::chrono::nanoseconds _took);
    void work_off(std::unique_lock<std::mutex>* _held, password_check_t _check);

    std::mutex mutex;  ///< guards all below
    std::condition_variable more;
    std::condition_variable idle;
    check_queue_t queue;
    std::optional<digest_t> running;
    std::vector<password_verdict_t> verdicts;
    double iteration_ns = 1'000;
    bool over = false;

    std::thread thread;
};

}  // namespace broker::plugin
