#pragma once

#include <QString>

#include "logs/classlogs.h"

namespace utility {

/// Writes one line to the server's logger; without a logger the line is skipped. Any thread.
/// Arguments as in logs::classlogs::log_asynch; the line numbers are part of the log's contract
/// where they are given as constants.
inline void log_line(const QString& _message, int _level, const char* _function,
                     const char* _source, int _line) {
    if (logs::classlogs* logger = logs::classlogs::getInstance()) {
        logger->log_asynch(_message, _level, QLatin1String(_function), QLatin1String(_source),
                           _line);
    }
}

}  // namespace utility
