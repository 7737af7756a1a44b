#pragma once

#include <QByteArray>
#include <QRandomGenerator>
#include <QString>

namespace base {

/// @p _bytes random bytes (1 to 64) of the system's generator, fit for secrets, as two lower-case
/// hexadecimal digits each. Any thread.
inline QString random_hex(int _bytes = 16) {
    QByteArray bytes(_bytes, Qt::Uninitialized);
    for (char& byte : bytes) {
        byte = static_cast<char>(QRandomGenerator::system()->bounded(256));
    }
    return QString::fromLatin1(bytes.toHex());
}

}  // namespace base
