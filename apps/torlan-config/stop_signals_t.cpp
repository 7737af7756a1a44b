#include "stop_signals_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>

namespace {

int pipe_ends[2] = {-1, -1};

// A signal handler may do little more than write.
void on_signal(int) {
    const char byte = 1;
    static_cast<void>(::write(pipe_ends[1], &byte, 1) + 1);
}

void handle(void (*_handler)(int)) {
    struct sigaction action = {};
    action.sa_handler = _handler;
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}

}  // namespace

stop_signals_t::stop_signals_t(QObject* _parent) : QObject(_parent) {
    if (::pipe2(pipe_ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    notifier = std::make_unique<QSocketNotifier>(pipe_ends[0], QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, [this]() {
        notifier->setEnabled(false);
        Q_EMIT stop_asked();
    });
    handle(on_signal);
}

stop_signals_t::~stop_signals_t() {
    handle(SIG_DFL);
    notifier.reset();
    for (int& end : pipe_ends) {
        ::close(end);
        end = -1;
    }
}
