#include "explanation.h"

#include <QJsonArray>
#include <string>

#include "broker/plugin/topic_judge.h"
#include "comunication/api_topics.h"
#include "database/element_type.h"
#include "database/permission.h"

namespace torlan {

namespace {

namespace topics = comunication::api_topics;
namespace permission = database::permission;
using access_t = database::store::overview_t::access_t;

/// Any word that a client calls itself by.
const QString any_client = QStringLiteral("CLIENT");

QString request_topic(const access_t& _access, const QString& _verb) {
    return topics::element_request(topics::version_1, _access.user, any_client, _verb,
                                   _access.element);
}

/// The code that a request is answered with, and why.
QJsonObject verdict(const access_t& _access, unsigned int _mask) {
    const int code = database::element_type::is_exposed(_access.type)
                         ? permission::verdict(quint64(_access.bits), _mask)
                         : permission::code_not_found;
    QString why;
    if (code == permission::code_not_found) {
        why = QStringLiteral("the API does not show elements of type %1").arg(_access.type);
    } else if (code == permission::code_unauthorized) {
        why =
            QStringLiteral("the grant %1 does not include it").arg(permission::word(_access.bits));
    }
    QJsonObject json{{QStringLiteral("code"), code}};
    if (!why.isEmpty()) {
        json.insert(QStringLiteral("refused"), why);
    }
    return json;
}

QJsonObject broker(const access_t& _access, const QString& _connection) {
    using namespace broker::plugin;
    const std::string user = _access.user.toStdString();
    const std::string connection = _connection.toStdString();
    const QString state = topics::element_state(topics::version_1, _access.user, _access.element);
    const auto passes = [&user](const QString& _topic) {
        return may_write(user, _topic.toStdString(), false);
    };
    return {{QStringLiteral("get"), passes(request_topic(_access, QStringLiteral("get")))},
            {QStringLiteral("set"), passes(request_topic(_access, QStringLiteral("set")))},
            {QStringLiteral("state"), may_subscribe(user, state.toStdString(), connection)}};
}

QString yes_or_no(const QJsonValue& _passes) {
    return _passes.toBool() ? QStringLiteral("passes") : QStringLiteral("is refused");
}

QString verdict_text(const QJsonValue& _verdict) {
    const QString why = _verdict[QLatin1String("refused")].toString();
    const int code = _verdict[QLatin1String("code")].toInt();
    return why.isEmpty() ? QStringLiteral("answered")
                         : QStringLiteral("refused with %1: %2").arg(code).arg(why);
}

QString line(const char* _label, const QString& _text) {
    return QStringLiteral("%1%2\n").arg(QLatin1String(_label), -12).arg(_text);
}

}  // namespace

QJsonObject explanation(const access_t& _access) {
    const QString connection =
        _access.topic.isEmpty() ? QString() : topics::connection(_access.topic);
    const QString state = topics::element_state(topics::version_1, _access.user, _access.element);
    const bool reads = permission::allows(quint64(_access.bits), permission::read_bit) &&
                       database::element_type::is_exposed(_access.type);
    return {{QStringLiteral("user"), _access.user},
            {QStringLiteral("element"), _access.element},
            {QStringLiteral("name"), _access.name},
            {QStringLiteral("type"), _access.type},
            {QStringLiteral("grant"), permission::word(_access.bits)},
            {QStringLiteral("read"), verdict(_access, permission::read_bit)},
            {QStringLiteral("write"), verdict(_access, permission::write_bit)},
            {QStringLiteral("state"), reads},
            {QStringLiteral("topics"),
             QJsonObject{{QStringLiteral("get"), request_topic(_access, QStringLiteral("get"))},
                         {QStringLiteral("set"), request_topic(_access, QStringLiteral("set"))},
                         {QStringLiteral("state"), state},
                         {QStringLiteral("connection"), connection}}},
            {QStringLiteral("broker"), broker(_access, connection)}};
}

QString explanation_text(const QJsonObject& _explanation) {
    const auto text = [&_explanation](const char* _key) {
        return _explanation[QLatin1String(_key)].toVariant().toString();
    };
    const QJsonObject topics = _explanation[QLatin1String("topics")].toObject();
    const QJsonObject broker = _explanation[QLatin1String("broker")].toObject();
    const auto topic = [&](const char* _key) {
        return QStringLiteral("%1 (the broker: %2)")
            .arg(topics[QLatin1String(_key)].toString(), yes_or_no(broker[QLatin1String(_key)]));
    };
    QString shown = line("user", text("user"));
    shown +=
        line("element",
             QStringLiteral("%1, %2, type %3").arg(text("element"), text("name"), text("type")));
    shown += line("grant", text("grant"));
    shown += line("reads on", topic("get"));
    shown += line("", verdict_text(_explanation[QLatin1String("read")]));
    shown += line("writes on", topic("set"));
    shown += line("", verdict_text(_explanation[QLatin1String("write")]));
    shown += line("state on", topic("state"));
    shown += line("", _explanation[QLatin1String("state")].toBool()
                          ? QStringLiteral("follows each change")
                          : QStringLiteral("nothing comes: it takes the right to read"));
    return shown;
}

}  // namespace torlan
