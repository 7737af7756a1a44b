#pragma once

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

/// Handles events until @p _condition holds; false: it did not within @p _limit milliseconds.
/// Unlike QTest::qWaitFor it sleeps in the event loop only, so that thousands of messages do not
/// each cost ten milliseconds.
template <class Condition>
bool wait_until(Condition _condition, int _limit = 20'000) {
    QElapsedTimer clock;
    clock.start();
    QEventLoop loop;
    QTimer look;
    bool met = _condition();
    QObject::connect(&look, &QTimer::timeout, &loop, [&]() {
        met = _condition();
        if (met || clock.hasExpired(_limit)) {
            loop.quit();
        }
    });
    look.start(2);
    if (!met) {
        loop.exec();
    }
    return met;
}
