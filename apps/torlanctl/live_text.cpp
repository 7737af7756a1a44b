#include "live_text.h"

#include <QDateTime>
#include <QJsonArray>
#include <QStringList>
#include <algorithm>

namespace torlan {

namespace {

QString text(const QJsonObject& _object, const char* _key) {
    return _object.value(QLatin1String(_key)).toVariant().toString();
}

QJsonObject part(const QJsonObject& _object, const char* _key) {
    return _object.value(QLatin1String(_key)).toObject();
}

/// What came over the bus or stands in a log must not move a terminal's cursor.
QString printable(QString _text) {
    const auto is_control = [](QChar _char) { return _char.category() == QChar::Other_Control; };
    std::replace_if(_text.begin(), _text.end(), is_control, QLatin1Char(' '));
    return _text;
}

QString line(const char* _label, const QString& _text) {
    return QStringLiteral("%1%2\n").arg(QLatin1String(_label), -12).arg(printable(_text));
}

/// "16 elements, 1 users"
QString counts(const QJsonObject& _counts, std::initializer_list<const char*> _keys) {
    QStringList parts;
    for (const char* const key : _keys) {
        QString label = QString::fromLatin1(key);
        label.replace(QLatin1Char('_'), QLatin1Char(' '));
        parts.append(text(_counts, key) + QLatin1Char(' ') + label);
    }
    return parts.join(QStringLiteral(", "));
}

QString local_time(const QString& _iso, const QString& _format) {
    return QDateTime::fromString(_iso, Qt::ISODateWithMs).toLocalTime().toString(_format);
}

QString day_and_time(const QString& _iso) {
    return local_time(_iso, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

QString server_text(const QJsonObject& _server) {
    QString state = QStringLiteral("ready");
    if (!_server.value(QLatin1String("ready")).toBool()) {
        const QString waiting = text(_server, "waiting");
        state =
            waiting.isEmpty() ? QStringLiteral("starting") : QStringLiteral("starting: ") + waiting;
    }
    return QStringLiteral("%1, version %2, process %3, since %4")
        .arg(state, text(_server, "version"), text(_server, "process"),
             day_and_time(text(_server, "since")));
}

QString broker_text(const QJsonObject& _broker) {
    if (!_broker.value(QLatin1String("running")).toBool()) {
        return QStringLiteral("not running");
    }
    return QStringLiteral("running, process %1, %2")
        .arg(text(_broker, "process"), _broker.value(QLatin1String("users_confirmed")).toBool()
                                           ? QStringLiteral("knows its users")
                                           : QStringLiteral("has not confirmed its users"));
}

QString mqtt_text(const QJsonObject& _mqtt) {
    const QString address = text(_mqtt, "address");
    QString shown = address + QLatin1Char(':') + text(_mqtt, "port");
    if (_mqtt.contains(QLatin1String("websockets_port"))) {
        shown +=
            QStringLiteral(", WebSockets on %1:%2").arg(address, text(_mqtt, "websockets_port"));
    }
    return shown;
}

QString link_text(const QJsonObject& _bus) {
    return _bus.isEmpty() ? QStringLiteral("none")
                          : text(_bus, "url") + QStringLiteral(", ") + text(_bus, "link");
}

}  // namespace

QString status_text(const QJsonObject& _status) {
    QString shown = line("server", server_text(part(_status, "server")));
    if (_status.contains(QLatin1String("broker"))) {
        shown += line("broker", broker_text(part(_status, "broker")));
        shown += line("bus", link_text(part(_status, "bus")));
        shown += line("holds", counts(part(_status, "counts"),
                                      {"elements", "items", "scenarios", "thermostats", "users"}));
        shown +=
            line("messages", counts(part(_status, "messages"), {"received", "published", "dropped",
                                                                "requests_refused", "reconnects"}));
    }
    shown += line("MQTT", mqtt_text(part(_status, "mqtt")));
    shown += line("settings", QStringLiteral("127.0.0.1:") + text(_status, "configuration_port"));
    for (const char* const key : {"data", "log", "audit"}) {
        const QString path = text(part(_status, "paths"), key);
        shown += path.isEmpty() ? QString() : line(key, path);
    }
    const QJsonArray errors = _status.value(QLatin1String("errors")).toArray();
    shown += line("errors", errors.isEmpty() ? QStringLiteral("none") : QStringLiteral("the last"));
    for (const QJsonValue& error : errors) {
        const QJsonObject one = error.toObject();
        shown += QStringLiteral("  %1 %2\n")
                     .arg(day_and_time(text(one, "time")), printable(text(one, "message")));
    }
    return shown;
}

QString bus_text(const QJsonObject& _bus) {
    return line("bus", link_text(_bus)) +
           line("telegrams",
                counts(part(_bus, "counters"), {"received", "sent", "asked", "replaced", "dropped",
                                                "refused", "unknown", "undecodable", "malformed"}));
}

QString telegram_text(const QJsonObject& _telegram) {
    const QString source = text(_telegram, "source");
    QStringList items;
    for (const QJsonValue& item : _telegram.value(QLatin1String("items")).toArray()) {
        items.append(item.toString());
    }
    const auto shown = [](const QString& _text) {
        return _text.isEmpty() ? QStringLiteral("-") : _text;
    };
    return printable(QStringLiteral("%1  %2 -> %3  %4  %5  %6  %7")
                         .arg(local_time(text(_telegram, "time"), QStringLiteral("HH:mm:ss.zzz")))
                         .arg(source.isEmpty() ? QStringLiteral("we") : source, -10)
                         .arg(text(_telegram, "address"), -10)
                         .arg(text(_telegram, "kind"), -8)
                         .arg(shown(text(_telegram, "dpt")), -7)
                         .arg(shown(text(_telegram, "value")), -10)
                         .arg(shown(items.join(QLatin1Char(' ')))));
}

}  // namespace torlan
