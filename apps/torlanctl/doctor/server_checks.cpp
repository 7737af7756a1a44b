#include "base/random_hex.h"
#include "comunication/api_topics.h"
#include "doctor/checks.h"
#include "doctor/health_rules.h"
#include "program/port_holder.h"
#include "program/version.h"

namespace torlan {

namespace api_topics = comunication::api_topics;

findings_t server_findings(const QJsonObject& _status) {
    const QJsonObject mqtt = _status.value(QLatin1String("mqtt")).toObject();
    const qint64 broker =
        _status.value(QLatin1String("broker"))[QLatin1String("process")].toInteger();
    findings_t found = health_rules::server(_status);
    const auto add_port = [&found](const QString& _use, const QJsonValue& _port, qint64 _process) {
        if (const auto number = quint16(_port.toInt()); number != 0) {
            found.append(health_rules::port(_use, number, port_holder(number), _process));
        }
    };
    add_port(QStringLiteral("MQTT"), mqtt.value(QLatin1String("port")), broker);
    add_port(QStringLiteral("WebSockets"), mqtt.value(QLatin1String("websockets_port")), broker);
    add_port(QStringLiteral("settings"), _status.value(QLatin1String("configuration_port")), 0);
    const QJsonValue server = _status.value(QLatin1String("server"));
    found.append(health_rules::version(version(), server[QLatin1String("version")].toString()));
    return found;
}

namespace {

const QString about = QStringLiteral("rights");
constexpr std::chrono::seconds patience{3};

/// Somebody who must not come in.
finding_t stranger_finding(const api_account_t& _stranger, const QString& _who) {
    const outcome_t entered = api_session_t(_stranger).open();
    if (entered.status == status_sign_in) {
        return {about, health_t::ok, QStringLiteral("the broker turns away %1").arg(_who)};
    }
    return entered.status == status_silent
               ? finding_t{about, health_t::unchecked, entered.error}
               : finding_t{about, health_t::problem,
                           QStringLiteral("the broker lets in %1").arg(_who)};
}

}  // namespace

findings_t sign_in_findings(const QString& _host, quint16 _port) {
    api_account_t stranger{.host = _host, .port = _port, .user = {}, .password = {}};
    stranger.wait = patience;
    const finding_t nameless = stranger_finding(stranger, QStringLiteral("who has no name"));
    if (nameless.health == health_t::unchecked) {
        return {nameless};
    }
    stranger.user = QStringLiteral("doctor-") + base::random_hex(4);
    stranger.password = base::random_hex();
    return {nameless, stranger_finding(stranger, QStringLiteral("an unknown user"))};
}

findings_t rights_findings(const api_account_t& _account) {
    api_session_t session(_account);
    const outcome_t entered = session.open();
    if (entered.status != status_done) {
        return {{about, health_t::problem, entered.error}};
    }
    // Of a user with another name, whether there is one or not.
    const QString other =
        api_topics::user_root(api_topics::version_1, _account.user + QStringLiteral("-other"));
    findings_t found;
    for (const QString& filter :
         {QStringLiteral("#"), QStringLiteral("local/api/#"), other + QStringLiteral("/#")}) {
        const outcome_t listened = session.subscribe(filter);
        found.append({about, listened.status == status_failed ? health_t::ok : health_t::problem,
                      listened.status == status_failed
                          ? listened.error
                          : QStringLiteral("%1 may read %2").arg(_account.user, filter)});
    }
    const QString request = other + QStringLiteral("/me/request/get/elements/objects_list");
    const outcome_t sent = session.publish(request, QByteArray("{}"));
    found.append({about, sent.status == status_failed ? health_t::ok : health_t::problem,
                  sent.status == status_failed
                      ? sent.error
                      : QStringLiteral("%1 may ask on %2").arg(_account.user, request)});
    return found;
}

}  // namespace torlan
