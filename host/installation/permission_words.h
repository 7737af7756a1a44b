#pragma once

#include <QString>
#include <optional>

namespace database::installation {

/// Permission bits of "deny", "read", "write", "readwrite"; nothing for any other word.
std::optional<int> permission_bits(const QString& _word);

/// The word for permission bits 0 to 3.
QString permission_word(int _bits);

}  // namespace database::installation
