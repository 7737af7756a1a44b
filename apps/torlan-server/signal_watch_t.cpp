#include "signal_watch_t.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>

namespace torlan {

namespace {

std::atomic<int> event_descriptor = -1;
static_assert(std::atomic<int>::is_always_lock_free);

void on_signal(int) {
    const int former_error = errno;
    const quint64 one = 1;
    [[maybe_unused]] const ssize_t written = ::write(event_descriptor, &one, sizeof one);
    errno = former_error;
}

}  // namespace

signal_watch_t::signal_watch_t(QObject* _parent) : QObject(_parent) {
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    event_descriptor = descriptor;
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this]() {
        notifier->setEnabled(false);
        Q_EMIT asked_to_stop();
    });
    struct sigaction action = {};
    action.sa_handler = on_signal;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

signal_watch_t::~signal_watch_t() {
    ::signal(SIGINT, SIG_DFL);
    ::signal(SIGTERM, SIG_DFL);
    notifier->setEnabled(false);
    ::close(event_descriptor.exchange(-1));
}

}  // namespace torlan
