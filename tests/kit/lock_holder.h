#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

namespace kit {

/// A process that takes something, and then does nothing until it is ended.
class lock_holder_t {
 public:
    /// Returns when @p _take has run there.
    explicit lock_holder_t(const std::function<void()>& _take, bool _is_deaf = false) {
        int ends[2];
        if (::pipe(ends) != 0) {
            return;
        }
        process = ::fork();
        if (process == 0) {
            // Not the test's own, which look for a debugger first.
            ::signal(SIGTERM, _is_deaf ? SIG_IGN : SIG_DFL);
            _take();
            [[maybe_unused]] const ssize_t told = ::write(ends[1], "x", 1);
            for (;;) {
                ::pause();
            }
        }
        char taken = 0;
        ::close(ends[1]);
        is_ready = ::read(ends[0], &taken, 1) == 1;
        ::close(ends[0]);
    }
    ~lock_holder_t() {
        if (process > 0) {
            ::kill(process, SIGKILL);
            ending();
        }
    }
    lock_holder_t(const lock_holder_t&) = delete;
    lock_holder_t& operator=(const lock_holder_t&) = delete;

    /// The signal that ended it, waiting for that; 0: none.
    int ending() {
        int status = 0;
        const bool ended = process > 0 && ::waitpid(process, &status, 0) == process;
        process = -1;
        return ended && WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

    pid_t process = -1;
    bool is_ready = false;
};

}  // namespace kit
