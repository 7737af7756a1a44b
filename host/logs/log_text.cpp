#include "logs/log_text.h"

#include <algorithm>

namespace utility::logs {

namespace {

bool is_control(QChar _character) {
    const ushort code = _character.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
}

QString escape_of(QChar _character) {
    switch (_character.unicode()) {
        case '\n':
            return QStringLiteral("\\n");
        case '\r':
            return QStringLiteral("\\r");
        case '\t':
            return QStringLiteral("\\t");
        default:
            return QStringLiteral("\\u%1").arg(_character.unicode(), 4, 16, QLatin1Char('0'));
    }
}

}  // namespace

std::string log_text(const QString& _text) {
    const bool cut = _text.size() > max_log_text;
    const QString kept = cut ? _text.first(max_log_text) + QChar(0x2026) : _text;
    if (std::none_of(kept.cbegin(), kept.cend(), is_control)) {
        return kept.toStdString();
    }
    QString escaped;
    escaped.reserve(kept.size() + 16);
    for (const QChar character : kept) {
        if (is_control(character)) {
            escaped += escape_of(character);
        } else {
            escaped += character;
        }
    }
    return escaped.toStdString();
}

std::string log_line_text(const QString& _message, int _level, const QString& _function,
                          const QString& _source, int _line) {
    return '[' + std::to_string(_level) + "] " + log_text(_source) + ':' + std::to_string(_line) +
           ' ' + log_text(_function) + ' ' + log_text(_message);
}

}  // namespace utility::logs
