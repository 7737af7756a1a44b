#include "drivers/plugins/plugin_driver_api/mqtt/topic_scheme.h"

namespace interfaces::topics {

using comunication::utility::qos_t;
using comunication::utility::topic_publish_t;
using comunication::utility::topic_subscribe_t;

namespace {

QStringList below(const QString& _root, const QStringList& _levels) {
    QStringList topics;
    for (const QString& level : _levels) {
        topics.append(_root + level);
    }
    return topics;
}

topic_subscribe_t subscription(const QString& _topic, const QStringList& _bridges) {
    return {_topic, qos_t::exactly_once, _bridges};
}

topic_subscribe_t subtree(const QString& _topic, const QStringList& _bridges) {
    return subscription(_topic + QStringLiteral("/#"), _bridges);
}

topic_publish_t publication(const QString& _topic, const QString& _bridge) {
    return {_topic, qos_t::exactly_once, false, _bridge};
}

}  // namespace

const QString destination = QStringLiteral("@destination");
const QString sender = QStringLiteral("@sender");
const QString clientid = QStringLiteral("@clientid");
const QString installation_id = QStringLiteral("@installation_id");
const QString username = QStringLiteral("@username");
const QString bridgekey = QStringLiteral("@bridgekey");
const QString version_brand_device = QStringLiteral("@version_brand_device");
const QString capability = QStringLiteral("@capability");
const QString operation = QStringLiteral("@operation");

const QString forward_bridge = QStringLiteral("forward-bridge");
const QString cloud_bridge = QStringLiteral("cloud-bridge");
const QString local = QStringLiteral("local");
const QString persistent = QStringLiteral("persistent");
const QString realtime = QStringLiteral("realtime");
const QString presencesimulation = QStringLiteral("presencesimulation");
const QString command_word = QStringLiteral("command");
const QString db_prefix = QStringLiteral("DB/");
const QString rr_request = QStringLiteral("rr_request");
const QString rr_response = QStringLiteral("rr_response");
const QString pairing = QStringLiteral("pairing");
const QString api = QStringLiteral("api");
const QString mqtt_to_knx_tun = QStringLiteral("mqtt_to_knx_tun");
const QString sys = QStringLiteral("$SYS");
const QString brand_device = QStringLiteral("brand_device");

const QString channel_alternatives =
    QStringList{realtime, persistent, presencesimulation, command_word}.join(QLatin1Char('|'));
const QString correlation_alternatives = rr_response + QLatin1Char('|') + rr_request;
const QString bridge_alternatives = forward_bridge + QLatin1Char('|') + cloud_bridge;

const QStringList database_channels =
    below(db_prefix, {persistent, realtime, presencesimulation, command_word});
const QString base =
    QStringList{local, installation_id, sender, destination}.join(QLatin1Char('/'));
const QString connection = base + QStringLiteral("/connection");
const QString status = base + QStringLiteral("/status");
const QStringList status_channels = below(status + QLatin1Char('/'), database_channels);
const QString request = base + QStringLiteral("/request");
const QStringList request_channels = below(request + QLatin1Char('/'), database_channels);
const QString response_correlation = base + QLatin1Char('/') + rr_response;
const QString request_correlation = base + QLatin1Char('/') + rr_request;
const QString notification = base + QStringLiteral("/notification");
const QString command = base + QStringLiteral("/command");
const QString client_ready = command + QStringLiteral("/client/ready");
const QString presentation = connection + QStringLiteral("/presentation");

const QString pairing_root = QStringList{local, sender, pairing}.join(QLatin1Char('/'));
const QString pairing_response = pairing_root + QStringLiteral("/response");
const QString pairing_request = pairing_root + QStringLiteral("/request");

const QString api_wildcard = QStringList{local, api, QStringLiteral("+/+")}.join(QLatin1Char('/'));
const QString api_request_wildcard = api_wildcard + QStringLiteral("/+/request");
const QString api_status_wildcard = api_wildcard + QStringLiteral("/status");

const QString broker_connection = sys + QStringLiteral("/broker/connection/#");
const QString broker_connection_state =
    sys + QStringLiteral("/broker/connection/") + bridgekey + QStringLiteral("/state");
const QString broker_client_connected =
    sys + QStringLiteral("/brokers/+/clients/") + bridgekey + QStringLiteral("/connected");
const QString broker_client_disconnected =
    sys + QStringLiteral("/brokers/+/clients/") + bridgekey + QStringLiteral("/disconnected");

const QString devices_root =
    QStringList{local, brand_device, version_brand_device}.join(QLatin1Char('/'));
const QString device_root = devices_root + QLatin1Char('/') + clientid;
const QString all_devices_root = devices_root + QStringLiteral("/all");
const QString capability_status = device_root + QStringLiteral("/status/capability/") + capability;
const QString capability_status_wildcard = devices_root + QStringLiteral("/+/status/capability/#");
const QString capability_request = device_root + QStringLiteral("/request/capability/") +
                                   operation + QLatin1Char('/') + capability;
const QString capability_request_all =
    all_devices_root + QStringLiteral("/request/capability/read/") + capability;
const QString capability_request_wildcard = device_root + QStringLiteral("/request/capability/+/+");
const QString capability_request_all_wildcard =
    all_devices_root + QStringLiteral("/request/capability/read/+");

namespace {

const QStringList both_bridges{forward_bridge, cloud_bridge};
/// The subtree that the default and the command set share.
const topic_subscribe_t operations = subtree(base + QLatin1Char('/') + operation, both_bridges);

}  // namespace

const QList<topic_subscribe_t> subscribe_client_events{
    subscription(broker_client_connected, {}),
    subscription(broker_client_disconnected, {}),
};
const QList<topic_subscribe_t> subscribe_default{
    subscription(broker_connection, {}),
    subtree(request, both_bridges),
    subscription(client_ready, both_bridges),
    subscription(capability_status_wildcard, {}),
    operations,
};
const QList<topic_subscribe_t> subscribe_none;
const QList<topic_subscribe_t> subscribe_capability_requests{
    subscription(capability_request_wildcard, {}),
    subscription(capability_request_all_wildcard, {}),
};
const QList<topic_subscribe_t> subscribe_command{
    subtree(notification, both_bridges),
    subtree(status, both_bridges),
    operations,
};
const topic_publish_t publish_client_ready = publication(client_ready, forward_bridge);
const topic_publish_t publish_presentation = publication(presentation, forward_bridge);
const topic_publish_t publish_capability_status = publication(capability_status, QString());
const topic_publish_t publish_capability_request = publication(capability_request, QString());

}  // namespace interfaces::topics
