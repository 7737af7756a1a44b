#pragma once

#include <QByteArray>

#include "installation/installation_t.h"

namespace database::installation {

/// Whoever has a password hash can try passwords on it at leisure.
enum class passwords_t { left_out, hashed };

/// An installation as a document: keys in alphabetical order, indented, a line feed at the end.
/// Equal installations give equal bytes, and reading the bytes gives an equal installation; without
/// its password hashes, an installation without them.
QByteArray write_document(const installation_t& _installation, passwords_t _passwords);

}  // namespace database::installation
