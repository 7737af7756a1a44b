#include "api/change_text.h"

#include <QJsonObject>

#include "base/json_text.h"
#include "database/name_rules.h"

namespace torlan {

namespace {

QString coloured(const char* _colour, const QString& _text, colours_t _colours) {
    return _colours == colours_t::none
               ? _text
               : QStringLiteral("\x1b[%1m%2\x1b[0m").arg(QLatin1String(_colour), _text);
}

constexpr const char* faint = "2";
constexpr const char* cyan = "36";
constexpr const char* bold = "1";
constexpr const char* yellow = "33";

}  // namespace

QByteArray change_text(const readings_t::change_t& _change, const QDateTime& _time,
                       colours_t _colours) {
    QString text =
        coloured(faint, _time.toLocalTime().toString(QStringLiteral("HH:mm:ss.zzz")), _colours) +
        QStringLiteral("  ") + coloured(cyan, database::shown(_change.element), _colours) +
        QStringLiteral("  ");
    if (_change.function.isEmpty()) {
        text += coloured(yellow, QStringLiteral("is gone, or no longer to be read"), _colours);
    } else {
        text += database::shown(_change.function) + QStringLiteral("  ") +
                coloured(bold, database::shown(_change.value), _colours);
    }
    return text.toUtf8() + '\n';
}

QByteArray change_json(const readings_t::change_t& _change, const QDateTime& _time) {
    QJsonObject line{{QStringLiteral("time"), _time.toUTC().toString(Qt::ISODateWithMs)},
                     {QStringLiteral("element"), _change.element}};
    if (_change.function.isEmpty()) {
        line.insert(QStringLiteral("gone"), true);
    } else {
        line.insert(QStringLiteral("function"), _change.function);
        line.insert(QStringLiteral("value"), _change.value);
    }
    return base::json_to_text(line) + '\n';
}

}  // namespace torlan
