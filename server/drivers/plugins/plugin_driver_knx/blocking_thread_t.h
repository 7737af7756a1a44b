#pragma once

#include <QObject>
#include <QThread>
#include <utility>

namespace knx {

/// A thread for an object whose calls may block for minutes: nobody ever waits for it. When it is
/// to end, it ends behind the call that blocks, by itself, and takes the object along.
class blocking_thread_t {
 public:
    /// @param _object without a parent
    explicit blocking_thread_t(QObject* _object);
    ~blocking_thread_t();
    Q_DISABLE_COPY_MOVE(blocking_thread_t)

    /// Runs @p _call in the thread, behind the calls before it.
    template <class call_t>
    void run(call_t _call) {
        QMetaObject::invokeMethod(object, std::move(_call), Qt::QueuedConnection);
    }

 private:
    QThread* const thread;
    QObject* const object;
};

}  // namespace knx
