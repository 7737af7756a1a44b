#pragma once

#include <QDateTime>
#include <QList>
#include <QMutex>

#include "logs/classlogs.h"

namespace utility::logs {

/// Stands before the logger and keeps the last errors that pass, for people who ask. Any thread
/// may log.
class error_ring_t : public classlogs {
 public:
    /// Errors that are kept, and characters of each.
    static constexpr qsizetype most_errors = 20;
    static constexpr qsizetype longest_error = 500;

    struct error_t {
        QDateTime time;
        QString message;
    };

    error_ring_t() = default;
    ~error_ring_t() override;
    Q_DISABLE_COPY_MOVE(error_ring_t)

    /// Who writes the lines; null: nobody. Not while others log.
    void pass_on_to(classlogs* _logger) { logger = _logger; }

    void log_asynch(const QString& _message, int _level, const QString& _function,
                    const QString& _source, int _line) override;

    /// The oldest first.
    QList<error_t> errors() const;

 private:
    classlogs* logger = nullptr;
    mutable QMutex mutex;  ///< guards what is below
    QList<error_t> kept;
};

}  // namespace utility::logs
