#include "logs/early_logger_t.h"

#include <unistd.h>

#include <utility>

#include "logs/console_t.h"
#include "logs/log_text.h"

namespace utility::logs {

early_logger_t::~early_logger_t() {
    if (classlogs::getInstance() == this) {
        classlogs::setInstance(nullptr);
    }
    if (lines.isEmpty()) {
        return;
    }
    console_t console(STDOUT_FILENO);
    for (const line_t& line : std::as_const(lines)) {
        if (line.level <= level) {
            console.write(
                log_line_text(line.message, line.level, line.function, line.source, line.line) +
                '\n');
        }
    }
}

void early_logger_t::set_level(int _level) {
    const QMutexLocker locker(&mutex);
    level = _level;
}

void early_logger_t::log_asynch(const QString& _message, int _level, const QString& _function,
                                const QString& _source, int _line) {
    const QMutexLocker locker(&mutex);
    if (lines.size() < max_lines) {
        lines.append({_message, _level, _function, _source, _line});
    } else {
        ++lost;
    }
}

void early_logger_t::hand_over(classlogs* _logger) {
    QMutexLocker locker(&mutex);
    const QList<line_t> taken = std::exchange(lines, {});
    const qsizetype missing = std::exchange(lost, 0);
    locker.unlock();
    for (const line_t& line : taken) {
        _logger->log_asynch(line.message, line.level, line.function, line.source, line.line);
    }
    if (missing > 0) {
        _logger->log_asynch(QStringLiteral("%1 lines of the start are lost").arg(missing), 3,
                            QStringLiteral("hand_over"), QStringLiteral("host/logs/early_logger_t"),
                            __LINE__);
    }
}

}  // namespace utility::logs
