#pragma once

#include <QList>
#include <QMutex>
#include <QString>
#include <algorithm>

#include "logs/classlogs.h"

namespace fakes {

/// The server's logger for tests: keeps every line. It is the installed logger from construction
/// to destruction. Any thread.
class recording_logger_t : public utility::logs::classlogs {
 public:
    struct line_t {
        QString message;
        int level = 0;
        QString function;
        QString source;
        int line = 0;

        bool operator==(const line_t&) const = default;
    };

    recording_logger_t() { setInstance(this); }
    ~recording_logger_t() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(recording_logger_t)

    void log_asynch(const QString& _message, int _level, const QString& _function,
                    const QString& _source, int _line) override {
        const QMutexLocker locker(&mutex);
        recorded.append({_message, _level, _function, _source, _line});
    }

    /// Every line so far, oldest first.
    QList<line_t> lines() const {
        const QMutexLocker locker(&mutex);
        return recorded;
    }

    /// How many lines hold @p _text in their message.
    qsizetype count(const QString& _text) const {
        const QMutexLocker locker(&mutex);
        return std::count_if(recorded.cbegin(), recorded.cend(), [&_text](const line_t& _entry) {
            return _entry.message.contains(_text);
        });
    }

    /// Whether exactly this line was written.
    bool contains(const QString& _message, int _level, const QString& _function,
                  const QString& _source, int _line) const {
        const QMutexLocker locker(&mutex);
        return recorded.contains(line_t{_message, _level, _function, _source, _line});
    }

    /// Forgets every line.
    void clear() {
        const QMutexLocker locker(&mutex);
        recorded.clear();
    }

 private:
    mutable QMutex mutex;  ///< guards recorded
    QList<line_t> recorded;
};

}  // namespace fakes
