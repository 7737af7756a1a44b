#pragma once

#include <QMetaObject>
#include <QMutex>
#include <QPointer>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <functional>
#include <memory>

namespace utility {

/// Runs one action a fixed time after the last of a burst of triggers.
///
/// The timer and the action live in the thread of the owner; trigger() may be called from any
/// thread. With a limit of n >= 1, trigger n + 1 of one wait runs the action at once.
template <class... Args>
class timer_debounce_t {
    static_assert(sizeof...(Args) == 0, "the action takes no arguments");

 public:
    /// @param owner parent of the timer; the action runs in its thread
    /// @param interval_ms wait after the last trigger, in milliseconds
    /// @param action what to run
    /// @param limit triggers of one wait after which the action runs at once; 0: no limit
    timer_debounce_t(QObject* owner, int interval_ms, std::function<void()> action, int limit = 0)
        : state(std::make_shared<state_t>()) {
        state->timer = new QTimer(owner);
        state->timer->setSingleShot(true);
        state->timer->setInterval(interval_ms);
        state->action = std::move(action);
        state->limit = limit;
        QObject::connect(state->timer, &QTimer::timeout, state->timer,
                         [weak = std::weak_ptr(state)]() { run(weak, &state_t::expire); });
    }

    ~timer_debounce_t() {
        QTimer* timer = state->timer;
        if (timer == nullptr) {
            return;
        }
        timer->disconnect();
        if (timer->thread() == QThread::currentThread()) {
            delete timer;
        } else {
            timer->deleteLater();
        }
    }

    Q_DISABLE_COPY_MOVE(timer_debounce_t)

    /// (Re)starts the wait: at once on the timer's thread, else posted to it. A posted trigger
    /// that finds this object gone does nothing.
    void trigger() {
        // Over the limit the action runs in here, and it may destroy this object.
        const std::shared_ptr<state_t> alive = state;
        QTimer* timer = alive->timer;
        if (timer == nullptr) {
            return;
        }
        if (timer->thread() == QThread::currentThread()) {
            alive->restart();
            return;
        }
        QMetaObject::invokeMethod(
            timer, [weak = std::weak_ptr(alive)]() { run(weak, &state_t::restart); },
            Qt::QueuedConnection);
    }

    /// True from the first trigger until the action has run: while the timer runs, whoever starts
    /// or stops it, and inside the action that the wait led to. Timer's thread.
    bool isActive() const {
        return !state->timer.isNull() && (state->timer->isActive() || state->fired);
    }

    /// Runs the action now. Timer's thread.
    void doFire() {
        const std::shared_ptr<state_t> alive = state;
        alive->fire();
    }

 private:
    /// Shared with posted triggers, which may outlive the object.
    struct state_t {
        QPointer<QTimer> timer;
        std::function<void()> action;
        QMutex mutex;                    ///< guards the reset of the count at firing
        std::atomic<bool> fired{false};  ///< true while the action of a wait runs
        std::atomic<int> count{0};
        int limit = 0;

        void restart() {
            if (timer->isActive()) {
                ++count;
            } else {
                count = 1;
            }
            if (limit >= 1 && count > limit) {
                timer->stop();
                expire();
                return;
            }
            timer->start();
        }

        /// The wait is over: the timer runs no longer, the action not yet.
        void expire() {
            const bool outer = fired.exchange(true);
            fire();
            fired = outer;
        }

        void fire() {
            {
                const QMutexLocker locker(&mutex);
                count = 0;
            }
            if (action) {
                action();
            }
        }
    };

    static void run(const std::weak_ptr<state_t>& _weak, void (state_t::*_operation)()) {
        if (const std::shared_ptr<state_t> alive = _weak.lock()) {
            (alive.get()->*_operation)();
        }
    }

    const std::shared_ptr<state_t> state;
};

}  // namespace utility
