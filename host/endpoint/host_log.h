#pragma once

#include <QString>

#include "logs/classlogs.h"

namespace comunication {

/// Writes one line of the host's MQTT parts; skipped without a logger. Any thread.
/// Arguments as in utility::logs::classlogs::log_asynch.
inline void host_log(const QString& _message, int _level, const char* _function,
                     const char* _source, int _line) {
    if (auto* const logger = ::utility::logs::classlogs::getInstance()) {
        logger->log_asynch(_message, _level, QLatin1String(_function), QLatin1String(_source),
                           _line);
    }
}

}  // namespace comunication
