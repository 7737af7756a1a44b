#include "child_link_t.h"

#include <sys/socket.h>
#include <unistd.h>

#include <QSocketNotifier>

namespace torlan {

child_link_t::child_link_t(QObject* _parent) : QObject(_parent) {
    // Each number that a child tells is a packet of its own.
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        ends[0] = ends[1] = -1;
        return;
    }
    notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &child_link_t::read);
}

child_link_t::~child_link_t() {
    delete notifier;
    for (const int end : ends) {
        if (end >= 0) {
            ::close(end);
        }
    }
}

void child_link_t::read_all() {
    while (notifier != nullptr && read()) {
    }
}

bool child_link_t::read() {
    char text[32];
    const ssize_t count = ::recv(ends[0], text, sizeof text, MSG_DONTWAIT);
    if (count > 0) {
        Q_EMIT ready(QByteArray(text, qsizetype(count)).trimmed().toLongLong());
    }
    return count > 0;
}

}  // namespace torlan
