#include "process/file_lock_t.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>
#include <cerrno>

namespace process {

namespace {

/// The whole file, for one.
struct flock whole_file() {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

/// How often a lock that somebody else holds is looked at.
constexpr unsigned long look_again_ms = 10;
constexpr std::chrono::seconds death_takes(10);

}  // namespace

file_lock_t::state_t file_lock_t::take() {
    if (descriptor >= 0) {
        return state_t::ours;
    }
    const QByteArray name = QFile::encodeName(path);
    for (;;) {
        const int opened =
            ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
        if (opened < 0) {
            return state_t::failed;
        }
        const state_t state = take_opened(opened);
        struct stat here = {};
        struct stat there = {};
        // Its former holder may have removed it between the two calls.
        const bool is_same = ::fstat(opened, &here) == 0 && ::stat(name.constData(), &there) == 0 &&
                             here.st_dev == there.st_dev && here.st_ino == there.st_ino;
        if (state == state_t::ours && is_same) {
            descriptor = opened;
            return state;
        }
        const int reason = errno;
        ::close(opened);
        errno = reason;
        if (state != state_t::ours) {
            return state;
        }
    }
}

file_lock_t::state_t file_lock_t::take_opened(int _opened) {
    struct stat status = {};
    if (::fstat(_opened, &status) != 0 || !S_ISREG(status.st_mode)) {
        errno = EINVAL;
        return state_t::failed;
    }
    struct flock lock = whole_file();
    if (::fcntl(_opened, F_SETLK, &lock) == 0) {
        process = 0;
        return state_t::ours;
    }
    if (errno != EACCES && errno != EAGAIN) {
        return state_t::failed;
    }
    lock = whole_file();
    // Gone in this moment: the next look will tell.
    const bool is_held = ::fcntl(_opened, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
    process = is_held && lock.l_pid > 0 ? lock.l_pid : 0;
    return state_t::held;
}

void file_lock_t::release() {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

file_lock_t::state_t file_lock_t::look() {
    process = 0;
    if (descriptor >= 0) {
        return state_t::ours;  // to open and close the file would let go of it
    }
    const int opened =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (opened < 0) {
        return errno == ENOENT ? state_t::free : state_t::failed;
    }
    struct flock lock = whole_file();
    state_t state = state_t::failed;
    if (::fcntl(opened, F_GETLK, &lock) == 0) {
        state = lock.l_type == F_UNLCK ? state_t::free : state_t::held;
        process = state == state_t::held && lock.l_pid > 0 ? lock.l_pid : 0;
    }
    ::close(opened);
    return state;
}

bool file_lock_t::wait_until_free(std::chrono::milliseconds _limit) {
    const QDeadlineTimer limit(_limit);
    const qint64 before = process;
    while (look() == state_t::held && process == before) {
        if (limit.hasExpired()) {
            return false;
        }
        QThread::msleep(look_again_ms);
    }
    return true;
}

bool file_lock_t::end_holder(std::chrono::milliseconds _patience) {
    const state_t found = look();
    if (found != state_t::held) {
        return found == state_t::free;
    }
    if (process <= 0 || ::kill(pid_t(process), SIGTERM) != 0) {
        return look() == state_t::free;
    }
    // One that was stopped could not hear it.
    ::kill(pid_t(process), SIGCONT);
    if (wait_until_free(_patience)) {
        return true;
    }
    return ::kill(pid_t(process), SIGKILL) == 0 && wait_until_free(death_takes);
}

}  // namespace process
