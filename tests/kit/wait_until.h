#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace kit {

/// Handles events until @p _condition holds, which is asked after every turn of them; false: it did
/// not within @p _limit_ms. Sleeps in the event loop only: QTRY_VERIFY sleeps 10 ms between two
/// looks, which a client that gets thousands of messages cannot afford.
template <class Condition>
bool wait_until(const Condition& _condition, int _limit_ms = 20'000) {
    const QDeadlineTimer limit(_limit_ms);
    QTimer look;  // for what changes without an event of this thread
    look.start(10);
    while (!_condition()) {
        if (limit.hasExpired()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

}  // namespace kit
