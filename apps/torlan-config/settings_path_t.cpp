#include "settings_path_t.h"

#include <QStringDecoder>
#include <algorithm>
#include <optional>

namespace torlan {

namespace {

bool is_hex(char _char) {
    return (_char >= '0' && _char <= '9') || (_char >= 'a' && _char <= 'f') ||
           (_char >= 'A' && _char <= 'F');
}

bool is_encoded_well(const QByteArray& _text) {
    for (qsizetype i = 0; i < _text.size(); ++i) {
        const char byte = _text.at(i);
        if (byte <= ' ' || byte >= 0x7f || byte == '#') {
            return false;
        }
        if (byte == '%' &&
            (i + 2 >= _text.size() || !is_hex(_text.at(i + 1)) || !is_hex(_text.at(i + 2)))) {
            return false;
        }
    }
    return true;
}

bool is_allowed(QChar _char) {
    return _char != QLatin1Char('/') && _char.category() != QChar::Other_Control;
}

std::optional<QString> key_of(const QByteArray& _encoded) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString key = decoder(QByteArray::fromPercentEncoding(_encoded));
    if (decoder.hasError() || key.isEmpty() || key == QLatin1String(".") ||
        key == QLatin1String("..") || key.size() > settings_path_t::max_key_length ||
        !std::all_of(key.begin(), key.end(), is_allowed)) {
        return std::nullopt;
    }
    return key;
}

}  // namespace

settings_path_t settings_path_t::parse(const QByteArray& _encoded) {
    if (_encoded.size() > max_bytes) {
        return {{}, {414, QStringLiteral("The path is too long")}};
    }
    if (!_encoded.startsWith('/') || !is_encoded_well(_encoded)) {
        return {{}, {400, QStringLiteral("The path is malformed")}};
    }
    settings_path_t path;
    if (_encoded == "/") {
        return path;
    }
    const qsizetype end = _encoded.size() - (_encoded.endsWith('/') ? 1 : 0);
    const QList<QByteArray> parts = _encoded.mid(1, end - 1).split('/');
    for (const QByteArray& part : parts) {
        const std::optional<QString> key = key_of(part);
        if (!key) {
            return {{}, {400, QStringLiteral("The path has a key that is not allowed")}};
        }
        path.keys.append(*key);
    }
    if (path.keys.size() > max_depth) {
        return {{}, {400, QStringLiteral("The path is too deep")}};
    }
    return path;
}

}  // namespace torlan
