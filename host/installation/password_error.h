#pragma once

#include <QString>

namespace database::installation {

/// Why a text may not be a password (empty, over 256 characters, control characters), without
/// the text itself; empty: it may.
QString password_error(const QString& _password);

}  // namespace database::installation
