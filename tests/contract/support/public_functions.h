#pragma once

#include <QStringList>

namespace support {

/// The public functions that the classes of a header declare, each by its qualified name and as
/// often as it is overloaded: "utility::utility_t::getHash". Without templates, pure and deleted
/// functions, and what Qt's macros declare. Reads the way this project writes its headers.
QStringList public_functions(const QString& _header);

}  // namespace support
