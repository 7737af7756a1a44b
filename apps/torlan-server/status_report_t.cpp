#include "status_report_t.h"

#include <QCoreApplication>

#include "program/version.h"

namespace torlan {

namespace {

QJsonObject broker_json(const status_report_t::parts_t& _parts) {
    return {{QStringLiteral("process"), _parts.broker->process_id()},
            {QStringLiteral("running"), _parts.broker->is_listening()},
            {QStringLiteral("users_confirmed"), _parts.accounts->is_effective()}};
}

QJsonObject counts_json(const database::database_t& _database) {
    const auto* const data = _database.getPersistent()->getData();
    return {{QStringLiteral("elements"), data->getElements()->getObjects().size()},
            {QStringLiteral("items"), data->getItems()->getObjects().size()},
            {QStringLiteral("scenarios"), data->getScenary()->getObjects().size()},
            {QStringLiteral("thermostats"), data->getThermo()->getObjects().size()},
            {QStringLiteral("users"), data->getUsers()->getObjects().size()}};
}

QJsonObject messages_json(const comunication::endpoint_counters_t& _counts) {
    const auto number = [](const std::atomic<quint64>& _count) {
        return QJsonValue(qint64(_count.load()));
    };
    return {
        {QStringLiteral("received"), number(_counts.received)},
        {QStringLiteral("published"), number(_counts.published)},
        {QStringLiteral("dropped"), qint64(_counts.dropped_disconnected + _counts.dropped_full)},
        {QStringLiteral("requests_refused"), number(_counts.requests_refused)},
        {QStringLiteral("reconnects"), number(_counts.reconnects)}};
}

QJsonObject mqtt_json(const status_report_t::facts_t& _facts) {
    QJsonObject json{{QStringLiteral("address"), QStringLiteral("127.0.0.1")},
                     {QStringLiteral("port"), _facts.port}};
    if (_facts.ws_port != 0) {
        json.insert(QStringLiteral("websockets_port"), _facts.ws_port);
    }
    return json;
}

QJsonObject paths_json(const status_report_t::facts_t& _facts) {
    return {{QStringLiteral("data"), _facts.data},
            {QStringLiteral("log"), _facts.log},
            {QStringLiteral("audit"), _facts.audit}};
}

}  // namespace

status_report_t::status_report_t(const utility::logs::error_ring_t* _errors)
    : errors(_errors), since(QDateTime::currentDateTimeUtc()) {}

QJsonObject status_report_t::json() const {
    QJsonObject json{{QStringLiteral("server"), server_json()},
                     {QStringLiteral("mqtt"), mqtt_json(facts)},
                     {QStringLiteral("configuration_port"), facts.config_port},
                     {QStringLiteral("paths"), paths_json(facts)},
                     {QStringLiteral("errors"), errors_json()}};
    if (parts) {
        json.insert(QStringLiteral("broker"), broker_json(*parts));
        json.insert(QStringLiteral("counts"), counts_json(*parts->database));
        json.insert(QStringLiteral("messages"), messages_json(*parts->counts));
    }
    return json;
}

QJsonObject status_report_t::server_json() const {
    QJsonObject json{{QStringLiteral("version"), version()},
                     {QStringLiteral("process"), QCoreApplication::applicationPid()},
                     {QStringLiteral("since"), since.toString(Qt::ISODate)},
                     {QStringLiteral("ready"), parts.has_value()}};
    if (!parts && !waiting.isEmpty()) {
        json.insert(QStringLiteral("waiting"), waiting);
    }
    return json;
}

QJsonArray status_report_t::errors_json() const {
    QJsonArray list;
    for (const auto& error : errors->errors()) {
        list.append(QJsonObject{{QStringLiteral("time"), error.time.toString(Qt::ISODateWithMs)},
                                {QStringLiteral("message"), error.message}});
    }
    return list;
}

}  // namespace torlan
