// qemu-user 7.2 answers waitid(P_PIDFD) as a kernel with process descriptors does, but refuses
// clone(CLONE_PIDFD): Qt takes the descriptors for available and QProcess starts nothing. Without
// the first, Qt falls back to fork and signals.
#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <stdlib.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace {

using syscall_t = long (*)(long, ...);

// Programs of the emulating machine that a test starts could not load this library.
[[gnu::constructor]] void keep_from_children() {
    unsetenv("LD_PRELOAD");
}

}  // namespace

extern "C" long syscall(long _number, ...) noexcept {
    static const auto real = reinterpret_cast<syscall_t>(dlsym(RTLD_NEXT, "syscall"));
    va_list list;
    va_start(list, _number);
    long argument[6];
    for (long& one : argument) {
        one = va_arg(list, long);
    }
    va_end(list);
    if (_number == SYS_waitid && argument[0] == P_PIDFD) {
        errno = EINVAL;
        return -1;
    }
    return real(_number, argument[0], argument[1], argument[2], argument[3], argument[4],
                argument[5]);
}
