#pragma once

#include <QList>
#include <QMutex>

#include "logs/classlogs.h"

namespace utility::logs {

/// Keeps the lines of a program's start, until the settings say where the log is.
///
/// Lines that nobody took over go to standard output at destruction, so that a start that fails,
/// even one that leaves by exit(), says why: make it static. Any thread may log.
class early_logger_t : public classlogs {
 public:
    /// Lines that are kept; later ones are counted and lost.
    static constexpr qsizetype max_lines = 1000;

    early_logger_t() = default;
    /// Takes itself out as the installed logger.
    ~early_logger_t() override;
    Q_DISABLE_COPY_MOVE(early_logger_t)

    /// Highest level that destruction writes; 4 unless told otherwise.
    void set_level(int _level);

    void log_asynch(const QString& _message, int _level, const QString& _function,
                    const QString& _source, int _line) override;

    /// Gives @p _logger what was kept, in order, and keeps nothing of it.
    void hand_over(classlogs* _logger);

 private:
    struct line_t {
        QString message;
        int level;
        QString function;
        QString source;
        int line;
    };

    QMutex mutex;  ///< guards all of the below
    QList<line_t> lines;
    qsizetype lost = 0;
    int level = 4;
};

}  // namespace utility::logs
