#include "broker/plugin/password_worker_t.h"

#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace broker::plugin {

namespace {

/// Verdicts that nobody has taken yet; then the worker waits.
constexpr std::size_t most_verdicts = 1'024;

}  // namespace

password_worker_t::password_worker_t() {
    // Signals are the broker's: a new thread has its maker's mask.
    sigset_t all;
    sigset_t former;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &former);
    thread = std::thread([this]() { run(); });
    ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

password_worker_t::~password_worker_t() {
    {
        const std::lock_guard held(mutex);
        over = true;
    }
    more.notify_all();
    thread.join();
}

std::vector<visitor_t> password_worker_t::submit(password_check_t _check) {
    const std::lock_guard held(mutex);
    if (running == _check.digest) {
        return {};
    }
    auto pushed_out = queue.push(std::move(_check));
    more.notify_one();
    return pushed_out;
}

std::vector<password_verdict_t> password_worker_t::take() {
    const std::lock_guard held(mutex);
    if (verdicts.size() >= most_verdicts) {
        more.notify_one();
    }
    return std::exchange(verdicts, {});
}

bool password_worker_t::wait_idle(std::chrono::microseconds _limit) {
    std::unique_lock held(mutex);
    return idle.wait_for(held, _limit, [this]() { return !running && queue.is_empty(); });
}

bool password_worker_t::is_idle() {
    return wait_idle(std::chrono::microseconds(0));
}

std::chrono::microseconds password_worker_t::estimate(std::uint32_t _iterations) {
    const std::lock_guard held(mutex);
    return std::chrono::microseconds(std::int64_t(iteration_ns * _iterations / 1'000) + 1);
}

void password_worker_t::learn(std::uint32_t _iterations, std::chrono::nanoseconds _took) {
    const std::lock_guard held(mutex);
    follow(_iterations, _took);
}

void password_worker_t::follow(std::uint32_t _iterations, std::chrono::nanoseconds _took) {
    // Slowly, so that one interruption does not count.
    iteration_ns += (double(_took.count()) / std::max(1u, _iterations) - iteration_ns) / 8;
}

void password_worker_t::run() {
    // The processor is the broker's first; Linux knows this number for each thread.
    ::setpriority(PRIO_PROCESS, id_t(::syscall(SYS_gettid)), 10);
    std::unique_lock held(mutex);
    while (true) {
        more.wait(held, [this]() {
            return over || (!queue.is_empty() && verdicts.size() < most_verdicts);
        });
        if (over) {
            return;
        }
        if (auto next = queue.pop()) {
            work_off(&held, std::move(*next));
        }
        idle.notify_all();
    }
}

void password_worker_t::work_off(std::unique_lock<std::mutex>* _held, password_check_t _check) {
    using clock_t = std::chrono::steady_clock;
    running = _check.digest;
    _held->unlock();
    const auto begin = clock_t::now();
    const bool right = _check.hash.matches(_check.password) && _check.life != 0;
    const auto took = clock_t::now() - begin;
    _held->lock();
    running.reset();
    follow(_check.hash.iterations, took);
    verdicts.push_back({_check.digest, std::move(_check.visitor), _check.life, right});
}

}  // namespace broker::plugin
