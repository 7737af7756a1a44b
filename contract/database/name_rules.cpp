#include "database/name_rules.h"

#include <QStringList>
#include <algorithm>

namespace database {

namespace {

constexpr qsizetype max_identifier = 64;
constexpr qsizetype max_topic = 256;
constexpr qsizetype max_shown = 80;

/// Answer topics replace this word, so that no topic level may hold it.
const QLatin1String reserved_word("request");

bool is_identifier_character(QChar _c) {
    const char16_t c = _c.unicode();
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.' ||
           c == '_' || c == '-';
}

bool is_control(QChar _c) {
    return _c.category() == QChar::Other_Control;
}

bool is_level(const QString& _level) {
    return !_level.isEmpty() && _level.size() <= max_identifier &&
           std::all_of(_level.begin(), _level.end(), is_identifier_character);
}

/// A question mark stands for what is no character.
QString whole_characters(const QString& _text) {
    return _text.isValidUtf16() ? _text : QString::fromUtf8(_text.toUtf8());
}

}  // namespace

QString identifier_error(const QString& _text) {
    if (!is_level(_text)) {
        return QStringLiteral("must be 1 to 64 of the characters 0-9 a-z A-Z . _ -");
    }
    if (_text.contains(reserved_word)) {
        return QStringLiteral("must not contain \"request\"");
    }
    return {};
}

QString topic_error(const QString& _topic) {
    const QStringList levels = _topic.split(QLatin1Char('/'));
    if (_topic.size() > max_topic || !std::all_of(levels.begin(), levels.end(), is_level)) {
        return QStringLiteral(
            "must be levels of 1 to 64 of the characters 0-9 a-z A-Z . _ - joined by \"/\", at "
            "most 256 characters");
    }
    if (levels.constFirst() == QLatin1String("api")) {
        return QStringLiteral("must not begin with the level \"api\"");
    }
    if (_topic.contains(reserved_word)) {
        return QStringLiteral("must not contain \"request\"");
    }
    return {};
}

QString plain_text_error(const QString& _text) {
    if (!_text.isValidUtf16() || std::any_of(_text.begin(), _text.end(), is_control)) {
        return QStringLiteral("must be text without control characters");
    }
    return {};
}

QString value_error(const QString& _value) {
    if (!_value.isValidUtf16() || _value.contains(QChar(u'\0'))) {
        return QStringLiteral("must be text without NUL characters");
    }
    return {};
}

QString cleaned_text(const QString& _text) {
    QString text = whole_characters(_text);
    std::replace_if(text.begin(), text.end(), is_control, QChar(u' '));
    return text;
}

QString cleaned_value(const QString& _value) {
    return whole_characters(_value).remove(QChar(u'\0'));
}

QString shown(const QString& _text) {
    QString text = _text.size() > max_shown ? _text.left(max_shown) + QChar(u'…') : _text;
    std::replace_if(text.begin(), text.end(), is_control, QChar(u'?'));
    return text;
}

QString quoted(const QString& _text) {
    return u'"' + shown(_text) + u'"';
}

}  // namespace database
