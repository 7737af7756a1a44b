#include "audit/line_text.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <array>

namespace audit {

namespace {

struct text_field_t {
    const char* key;
    QString entry_t::*field;
};

/// In this order in a line, behind the times and the count.
constexpr std::array<text_field_t, 12> fields{{
    {"user", &entry_t::user},
    {"client", &entry_t::client},
    {"called", &entry_t::called},
    {"address", &entry_t::address},
    {"by", &entry_t::by},
    {"operation", &entry_t::operation},
    {"element", &entry_t::element},
    {"function", &entry_t::function},
    {"value", &entry_t::value},
    {"result", &entry_t::result},
    {"detail", &entry_t::detail},
    {"uuid", &entry_t::uuid},
}};

/// Whether it cannot stand in a line as it is; half a surrogate pair is no character either.
bool needs_escape(char16_t _unit) {
    return _unit < 0x20 || _unit == '"' || _unit == '\\' || (_unit >= 0x7f && _unit < 0xa0) ||
           _unit == 0x2028 || _unit == 0x2029;
}

QByteArray json_quoted(const QString& _text) {
    QString escaped;
    escaped.reserve(_text.size() + 2);
    for (const QChar character : _text) {
        if (needs_escape(character.unicode())) {
            escaped += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            escaped += character;
        }
    }
    return '"' + escaped.toUtf8() + '"';
}

qint64 time_of(const QJsonValue& _value) {
    const QDateTime time = QDateTime::fromString(_value.toString(), Qt::ISODateWithMs);
    return time.isValid() ? time.toMSecsSinceEpoch() : 0;
}

}  // namespace

entry_t shortened(entry_t _entry) {
    for (const text_field_t& field : fields) {
        QString& text = _entry.*field.field;
        if (text.size() > max_text) {
            text = text.first(max_text) + QChar(0x2026);
        }
    }
    return _entry;
}

QString time_text(qint64 _time) {
    return QDateTime::fromMSecsSinceEpoch(_time).toUTC().toString(Qt::ISODateWithMs);
}

QByteArray line_of(const entry_t& _entry) {
    QByteArray line = "{\"time\":\"" + time_text(_entry.time).toLatin1() + '"';
    if (_entry.since != 0) {
        line += ",\"since\":\"" + time_text(_entry.since).toLatin1() + '"';
    }
    if (_entry.count != 1) {
        line += ",\"count\":" + QByteArray::number(_entry.count);
    }
    const entry_t entry = shortened(_entry);
    for (const text_field_t& field : fields) {
        const QString& text = entry.*field.field;
        if (!text.isEmpty()) {
            line += QByteArray(",\"") + field.key + "\":" + json_quoted(text);
        }
    }
    return line + "}\n";
}

std::optional<entry_t> entry_of(const QByteArray& _line) {
    const QJsonObject object = QJsonDocument::fromJson(_line).object();
    entry_t entry;
    entry.time = time_of(object.value(QLatin1String("time")));
    entry.since = time_of(object.value(QLatin1String("since")));
    entry.count = object.value(QLatin1String("count")).toInteger(1);
    for (const text_field_t& field : fields) {
        entry.*field.field = object.value(QLatin1String(field.key)).toString();
    }
    if (entry.time == 0 || entry.operation.isEmpty()) {
        return std::nullopt;
    }
    return entry;
}

}  // namespace audit
