#pragma once

#include <QString>
#include <string>

namespace utility::logs {

/// Longest text of one line, in UTF-16 units; what is longer is cut and ends with an ellipsis.
constexpr qsizetype max_log_text = 16 * 1024;

/// @p _text in UTF-8 as it may stand in a log file: control characters (and the Unicode line and
/// paragraph separators) are escaped, so that one call is one line, whoever sent the text.
std::string log_text(const QString& _text);

/// One line of the log without its time: "[level] source:line function message".
std::string log_line_text(const QString& _message, int _level, const QString& _function,
                          const QString& _source, int _line);

}  // namespace utility::logs
