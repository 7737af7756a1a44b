#pragma once

#include "logs/log_line.h"

namespace utility {

/// A log line of torlan_option_t.
inline void log_option(const QString& _message, int _level, const char* _function, int _line) {
    log_line(_message, _level, _function, "server/utility/torlan_option_t", _line);
}

}  // namespace utility
