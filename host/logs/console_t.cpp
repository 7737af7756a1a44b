#include "logs/console_t.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace utility::logs {

struct console_t::state_t {
    explicit state_t(int _descriptor) : descriptor(_descriptor) {}

    void run();
    bool next(std::string* _text);
    void write_whole(const std::string& _text);
    bool may_write();

    const int descriptor;
    std::mutex mutex;  ///< guards all of the below
    std::condition_variable changed;
    std::deque<std::string> lines;
    std::size_t bytes = 0;
    std::size_t dropped = 0;
    bool is_ending = false;
    bool is_closed = false;
    bool has_ended = false;
};

void console_t::state_t::run() {
    std::string text;
    while (next(&text)) {
        write_whole(text);
    }
    const std::lock_guard locker(mutex);
    has_ended = true;
    changed.notify_all();
}

bool console_t::state_t::next(std::string* _text) {
    std::unique_lock locker(mutex);
    changed.wait(locker, [this]() { return is_ending || !lines.empty(); });
    if (lines.empty() || is_closed) {
        return false;
    }
    const std::size_t missing = std::exchange(dropped, 0);
    *_text = std::move(lines.front());
    lines.pop_front();
    bytes -= _text->size();
    if (missing > 0) {
        _text->append(std::to_string(missing) +
                      " lines are not shown here: nobody read standard output\n");
    }
    return true;
}

/// Not more at once than a pipe takes without waiting when there is room at all.
void console_t::state_t::write_whole(const std::string& _text) {
    std::size_t done = 0;
    while (done < _text.size() && may_write()) {
        const std::size_t piece = std::min<std::size_t>(_text.size() - done, PIPE_BUF);
        const ssize_t written = ::write(descriptor, _text.data() + done, piece);
        if (written < 0 && errno != EINTR && errno != EAGAIN) {
            const std::lock_guard locker(mutex);
            is_closed = true;
            return;
        }
        done += std::size_t(std::max<ssize_t>(written, 0));
    }
}

/// Waits for a reader; at the end no longer than a moment.
bool console_t::state_t::may_write() {
    constexpr int glance_ms = 100;
    for (;;) {
        pollfd output = {descriptor, POLLOUT, 0};
        const int ready = ::poll(&output, 1, glance_ms);
        if (ready > 0 || (ready < 0 && errno != EINTR)) {
            return true;  // what is wrong with it the write will tell
        }
        const std::lock_guard locker(mutex);
        if (is_ending) {
            is_closed = true;
            return false;
        }
    }
}

console_t::console_t(int _descriptor) : state(std::make_shared<state_t>(_descriptor)) {
    std::thread([shared = state]() { shared->run(); }).detach();
}

console_t::~console_t() {
    std::unique_lock locker(state->mutex);
    state->is_ending = true;
    state->changed.notify_all();
    // Who shares the pipe may have filled it between the look and the write: then the thread stays
    // behind, and ends with the process.
    state->changed.wait_for(locker, patience, [this]() { return state->has_ended; });
}

void console_t::write(std::string _line) {
    const std::lock_guard locker(state->mutex);
    if (state->is_closed) {
        return;
    }
    if (state->bytes + _line.size() > limit) {
        ++state->dropped;
        return;
    }
    state->bytes += _line.size();
    state->lines.push_back(std::move(_line));
    state->changed.notify_all();
}

bool console_t::is_closed() const {
    const std::lock_guard locker(state->mutex);
    return state->is_closed;
}

}  // namespace utility::logs
