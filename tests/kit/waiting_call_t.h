#pragma once

#include <unistd.h>

#include <QFile>
#include <QThread>
#include <atomic>
#include <functional>
#include <memory>
#include <utility>

namespace kit {

/// A call on a thread of its own, and whether it waits there, for a lock that the test holds. The
/// kernel says so; nothing is guessed from the clock.
class waiting_call_t {
 public:
    explicit waiting_call_t(std::function<void()> _call)
        : thread(QThread::create([this, call = std::move(_call)] {
              id = gettid();
              call();
              returned = true;
          })) {
        thread->start();
    }
    ~waiting_call_t() { finish(); }
    Q_DISABLE_COPY_MOVE(waiting_call_t)

    /// True once the call sleeps; false once it has returned.
    bool waits() const {
        while (!returned) {
            if (id != 0 && sleeps() && !returned) {
                return true;
            }
            QThread::yieldCurrentThread();
        }
        return false;
    }

    /// Returns when the call has.
    void finish() { thread->wait(); }

 private:
    /// The letter behind the program's name, which stands in parentheses.
    bool sleeps() const {
        QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(id.load()));
        const QByteArray line = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        return line.mid(line.lastIndexOf(')') + 2, 1) == "S";
    }

    std::atomic<pid_t> id{0};
    std::atomic<bool> returned{false};
    const std::unique_ptr<QThread> thread;
};

}  // namespace kit
