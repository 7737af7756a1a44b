#include "process/inherited_lock_t.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>

namespace process {

inherited_lock_t::~inherited_lock_t() {
    if (held >= 0) {
        ::close(held);
    }
}

inherited_lock_t::state_t inherited_lock_t::take() {
    if (held >= 0) {
        return state_t::ours;
    }
    const int opened = ::open(QFile::encodeName(path).constData(),
                              O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (opened < 0) {
        return state_t::failed;
    }
    if (::flock(opened, LOCK_EX | LOCK_NB) == 0) {
        held = opened;
        return state_t::ours;
    }
    const int reason = errno;
    ::close(opened);
    errno = reason;
    return reason == EWOULDBLOCK ? state_t::held : state_t::failed;
}

}  // namespace process
