#include "doctor/health_rules.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QStringList>
#include <QVersionNumber>
#include <cstdlib>

namespace torlan::health_rules {

namespace {

constexpr qint64 mib = 1 << 20;
constexpr qint64 little_room = 512 * mib;
constexpr qint64 no_room = 64 * mib;
constexpr int first_sane_year = 2024;
constexpr int last_sane_year = 2100;
constexpr qint64 jump_s = 30;
// What its plugin is tried with.
const QVersionNumber first_broker(2, 0, 11);
const QVersionNumber last_broker(2, 0, 21);

QString text_at(const QJsonObject& _document, std::initializer_list<const char*> _keys) {
    QJsonValue value = _document;
    for (const char* const key : _keys) {
        value = value[QLatin1String(key)];
    }
    return value.toString();
}

QString joined(const QJsonValue& _texts) {
    QStringList texts;
    for (const QJsonValue& text : _texts.toArray()) {
        texts.append(text.toString());
    }
    return texts.join(QStringLiteral(", "));
}

}  // namespace

finding_t disk(const QString& _folder, qint64 _free, qint64 _total, bool _is_read_only) {
    const QString about = QStringLiteral("disk");
    if (_is_read_only) {
        return {about, health_t::problem,
                QStringLiteral("%1 is on a file system that cannot be written").arg(_folder)};
    }
    const QString room = QStringLiteral("%1: %2 MiB of %3 MiB are free")
                             .arg(_folder)
                             .arg(_free / mib)
                             .arg(_total / mib);
    if (_free < no_room) {
        return {about, health_t::problem, room};
    }
    return {about, _free < little_room ? health_t::warning : health_t::ok, room};
}

finding_t secret(const QString& _name, mode_t _mode) {
    const mode_t bits = _mode & 0777U;
    const QString mode = QStringLiteral("%1").arg(bits, 4, 8, QLatin1Char('0'));
    const QString about = QStringLiteral("files");
    if ((bits & 022U) != 0) {
        return {about, health_t::problem,
                QStringLiteral("others can change %1, mode %2").arg(_name, mode)};
    }
    if ((bits & 044U) != 0) {
        return {about, health_t::warning,
                QStringLiteral("others can read %1, mode %2").arg(_name, mode)};
    }
    return {about, health_t::ok, QStringLiteral("%1 has mode %2").arg(_name, mode)};
}

findings_t clock(const clock_t& _clock) {
    const QString about = QStringLiteral("clock");
    const int year = _clock.now.date().year();
    findings_t found;
    if (year < first_sane_year || year > last_sane_year) {
        found.append({about, health_t::problem, QStringLiteral("it is the year %1").arg(year)});
    }
    const qint64 jump = (_clock.by_clock - _clock.by_machine).count();
    if (std::abs(jump) > jump_s) {
        found.append({about, health_t::warning,
                      QStringLiteral("it was set by %1 s since the server has begun").arg(jump)});
    }
    if (!_clock.is_synchronised) {
        found.append({about, health_t::warning,
                      QStringLiteral("the kernel says that nothing synchronises it")});
    }
    if (found.isEmpty()) {
        found.append({about, health_t::ok, _clock.now.toString(Qt::ISODate)});
    }
    return found;
}

findings_t settings(const QByteArray& _document) {
    const QString about = QStringLiteral("settings");
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(_document, &error);
    if (!document.isObject()) {
        return {{about, health_t::problem,
                 QStringLiteral("settings.json is no JSON object: %1").arg(error.errorString())}};
    }
    const QJsonObject whole = document.object();
    findings_t found;
    if (text_at(whole, {"installation", "installation_id"}).isEmpty()) {
        found.append({about, health_t::warning,
                      QStringLiteral("there is no installation_id yet; the server makes one")});
    }
    for (const char* const path : {"logs", "plugins"}) {
        if (text_at(whole, {"static", "torlan", "paths", path}).isEmpty()) {
            found.append({about, health_t::warning,
                          QStringLiteral("static/torlan/paths/%1 says nothing: a default holds")
                              .arg(QLatin1String(path))});
        }
    }
    if (found.isEmpty()) {
        found.append({about, health_t::ok, QStringLiteral("settings.json is readable")});
    }
    return found;
}

finding_t version(const QString& _own, const QString& _server) {
    return {QStringLiteral("versions"), _own == _server ? health_t::ok : health_t::warning,
            QStringLiteral("this program is %1, the server that runs %2").arg(_own, _server)};
}

finding_t broker_version(const QByteArray& _said) {
    static const QRegularExpression version(QStringLiteral("version (\\d+)\\.(\\d+)\\.(\\d+)"));
    const QString about = QStringLiteral("versions");
    const auto match = version.match(QString::fromUtf8(_said.left(200)));
    if (!match.hasMatch()) {
        return {about, health_t::problem,
                QStringLiteral("there is no program mosquitto that says its version")};
    }
    const QVersionNumber found(match.captured(1).toInt(), match.captured(2).toInt(),
                               match.captured(3).toInt());
    const bool is_known = found >= first_broker && found <= last_broker;
    return {about, is_known ? health_t::ok : health_t::warning,
            QStringLiteral("mosquitto is %1%2")
                .arg(found.toString(),
                     is_known ? QString()
                              : QStringLiteral(", tried are %1 to %2")
                                    .arg(first_broker.toString(), last_broker.toString()))};
}

finding_t port(const QString& _use, quint16 _port, const QString& _holder, qint64 _process) {
    const QString about = QStringLiteral("ports");
    const QString place = QStringLiteral("%1 on 127.0.0.1:%2").arg(_use).arg(_port);
    if (_holder.isEmpty()) {
        return {about, health_t::problem, QStringLiteral("nobody listens for %1").arg(place)};
    }
    const QString holder = QStringLiteral("%1: %2").arg(place, _holder);
    const bool is_named = _holder.startsWith(QLatin1String("process "));
    const bool is_other = _process != 0 && is_named &&
                          !_holder.startsWith(QStringLiteral("process %1 ").arg(_process));
    return {about, is_other ? health_t::problem : health_t::ok,
            is_other ? holder + QStringLiteral(", not process %1").arg(_process) : holder};
}

findings_t server(const QJsonObject& _status) {
    const QString about = QStringLiteral("server");
    const QJsonObject server = _status.value(QLatin1String("server")).toObject();
    if (!server.value(QLatin1String("ready")).toBool()) {
        return {{about, health_t::warning,
                 QStringLiteral("is starting or stopping. %1").arg(text_at(server, {"waiting"}))}};
    }
    const QJsonObject broker = _status.value(QLatin1String("broker")).toObject();
    if (!broker.value(QLatin1String("running")).toBool()) {
        return {{about, health_t::problem, QStringLiteral("its broker does not run")}};
    }
    if (!broker.value(QLatin1String("users_confirmed")).toBool()) {
        return {{about, health_t::problem, QStringLiteral("its broker does not know its users")}};
    }
    findings_t found{{about, health_t::ok, QStringLiteral("is ready, its broker runs")}};
    const QJsonArray errors = _status.value(QLatin1String("errors")).toArray();
    if (!errors.isEmpty()) {
        found.append({about, health_t::warning,
                      QStringLiteral("its last error: %1")
                          .arg(text_at(errors.last().toObject(), {"message"}))});
    }
    return found;
}

finding_t retained(const QJsonObject& _answer) {
    const QString about = QStringLiteral("retained");
    const auto number = [&_answer](const char* _key) {
        return _answer.value(QLatin1String(_key)).toInteger();
    };
    const QString of_users = QStringLiteral("%1 states that %2 of %3 users may read")
                                 .arg(number("expected"))
                                 .arg(number("users_seen"))
                                 .arg(number("users"));
    if (number("missing") == 0 && number("surplus") == 0) {
        return {about, health_t::ok, QStringLiteral("the broker holds the %1").arg(of_users)};
    }
    return {about, number("surplus") > 0 ? health_t::problem : health_t::warning,
            QStringLiteral("of %1 the broker lacks %2, and it has %3 that they may not read: %4")
                .arg(of_users)
                .arg(number("missing"))
                .arg(number("surplus"))
                .arg(joined(_answer.value(QLatin1String("topics"))))};
}

}  // namespace torlan::health_rules
