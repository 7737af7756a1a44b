#pragma once

#include <QByteArray>
#include <QString>

namespace ets {

/// A text whose encoding nobody tells: UTF-8 or UTF-16 with their marks, UTF-16 without one, else
/// UTF-8 where that is what the bytes are, else Windows-1252, in which every byte is a character.
QString decoded_text(const QByteArray& _bytes);

/// Windows-1252; empty when a character is not in it.
QByteArray to_windows_1252(const QString& _text);

}  // namespace ets
