#include "program/stop_signals_t.h"

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

// A signal handler may do little more than write.
void on_signal(int) {
    const int former_error = errno;
    const quint64 one = 1;
    [[maybe_unused]] const ssize_t written = ::write(event_descriptor, &one, sizeof one);
    errno = former_error;
}

void handle(void (*_handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = _handler;
    action.sa_flags = SA_RESTART;
    for (const int number : {SIGINT, SIGTERM, SIGQUIT, SIGHUP}) {
        struct sigaction former = {};
        const bool ignored = number == SIGHUP && ::sigaction(number, nullptr, &former) == 0 &&
                             former.sa_handler == SIG_IGN;
        if (!ignored) {
            ::sigaction(number, &action, nullptr);
        }
    }
}

}  // namespace

stop_signals_t::stop_signals_t(QObject* _parent) : QObject(_parent) {
    const int descriptor = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0) {
        return;  // the signals end the process at once, as they do without this object
    }
    event_descriptor = descriptor;
    notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this]() {
        notifier->setEnabled(false);
        Q_EMIT stop_asked();
    });
    handle(on_signal);
}

stop_signals_t::~stop_signals_t() {
    if (notifier == nullptr) {
        return;
    }
    handle(SIG_DFL);
    notifier->setEnabled(false);
    ::close(event_descriptor.exchange(-1));
}

}  // namespace torlan
