#include "former_broker_t.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>
#include <cerrno>

#include "start_broken_off.h"

namespace torlan {

using state_t = process::inherited_lock_t::state_t;

namespace {

/// The kernel does not say when a lock becomes free.
constexpr std::chrono::milliseconds look_again(20);

}  // namespace

former_broker_t::former_broker_t(const QString& _file, QObject* _parent)
    : QObject(_parent), file(_file), lock(_file) {}

base::result_t former_broker_t::wait(std::chrono::milliseconds _limit) {
    state_t state = lock.take();
    if (state == state_t::held) {
        Q_EMIT waiting(QStringLiteral("waiting for the broker of a former start to end"));
    }
    const QDeadlineTimer limit(_limit);
    while (state == state_t::held && !limit.hasExpired() && !is_given_up) {
        QEventLoop loop;
        QTimer::singleShot(look_again, &loop, &QEventLoop::quit);
        loop.exec();
        state = lock.take();
    }
    if (is_given_up) {
        return start_broken_off();
    }
    if (state == state_t::held) {
        return base::result_t::failed(
            QStringLiteral("The broker of a former start does not end: it holds %1.").arg(file));
    }
    return state == state_t::ours
               ? base::result_t()
               : base::result_t::failed(
                     QStringLiteral("%1 cannot be written: %2.").arg(file, qt_error_string(errno)));
}

void former_broker_t::give_up() {
    is_given_up = true;
}

}  // namespace torlan
