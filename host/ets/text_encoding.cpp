#include "ets/text_encoding.h"

#include <QStringDecoder>
#include <algorithm>
#include <array>
#include <optional>

namespace ets {

namespace {

/// The bytes 0x80 to 0x9f; the others are those of Latin-1. Five are no characters and stay.
constexpr std::array<char16_t, 32> upper{
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

constexpr unsigned char first_upper = 0x80;

QString from_windows_1252(const QByteArray& _bytes) {
    QString text = QString::fromLatin1(_bytes);
    for (QChar& letter : text) {
        const auto place = static_cast<std::size_t>(letter.unicode() - first_upper);
        if (letter.unicode() >= first_upper && place < upper.size()) {
            letter = QChar(upper[place]);
        }
    }
    return text;
}

/// Which half of each pair of bytes is zero tells the order, in texts of our part of the world.
std::optional<QStringConverter::Encoding> unmarked_utf16(const QByteArray& _bytes) {
    const qsizetype pairs = std::min<qsizetype>(_bytes.size(), 4096) / 2;
    qsizetype first = 0;
    qsizetype second = 0;
    for (qsizetype pair = 0; pair < pairs; ++pair) {
        first += _bytes[2 * pair] == 0 ? 1 : 0;
        second += _bytes[2 * pair + 1] == 0 ? 1 : 0;
    }
    if (first == second || std::max(first, second) * 2 < pairs) {
        return std::nullopt;
    }
    return second > first ? QStringConverter::Utf16LE : QStringConverter::Utf16BE;
}

}  // namespace

QString decoded_text(const QByteArray& _bytes) {
    auto encoding = QStringConverter::encodingForData(_bytes);
    if (!encoding) {
        encoding = unmarked_utf16(_bytes);
    }
    QStringDecoder decoder(encoding.value_or(QStringConverter::Utf8));
    const QString text = decoder(_bytes);
    return decoder.hasError() && !encoding ? from_windows_1252(_bytes) : text;
}

QByteArray to_windows_1252(const QString& _text) {
    QByteArray bytes;
    for (const QChar letter : _text) {
        const auto* const found = std::find(upper.begin(), upper.end(), letter.unicode());
        if (found != upper.end()) {
            bytes.append(static_cast<char>(first_upper + (found - upper.begin())));
        } else if (letter.unicode() < 0x100) {
            bytes.append(static_cast<char>(letter.unicode()));
        } else {
            return {};
        }
    }
    return bytes;
}

}  // namespace ets
