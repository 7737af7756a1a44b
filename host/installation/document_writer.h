#pragma once

#include <QByteArray>

#include "installation/installation_t.h"

namespace database::installation {

/// An installation as a document: keys in alphabetical order, indented, a line feed at the end.
/// Equal installations give equal bytes, and reading the bytes gives an equal installation.
QByteArray write_document(const installation_t& _installation);

}  // namespace database::installation
