#pragma once

#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Why a text may not be a password, as the end of a sentence; empty: it may.
using password_rule_t = QString (*)(const QString& _password);

/// Reads a password, the first line of standard input. On a terminal it asks and switches the echo
/// off for as long as it reads, also when it is interrupted. A failure's sentence is without it.
/// @param _question what a person at a terminal is asked, with the blank behind it
base::result_of_t<QString> read_password(password_rule_t _rule, const QString& _question);

/// Reads the first line of a file, which may be a pipe. Handles events meanwhile.
base::result_of_t<QString> read_password_file(const QString& _path, password_rule_t _rule);

}  // namespace torlan
