#pragma once

#include "logs/log_line.h"

namespace utility {

/// A log line of utility_t.
inline void log_utility(const QString& _message, int _level, const char* _function, int _line) {
    log_line(_message, _level, _function, "server/utility/utility_t", _line);
}

}  // namespace utility
