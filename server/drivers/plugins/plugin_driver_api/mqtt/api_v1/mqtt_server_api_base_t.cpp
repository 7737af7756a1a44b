#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t.h"

#include "comunication/api_topics.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_topics.h"
#include "logs/log_line.h"

namespace interfaces {

namespace {
constexpr const char* source =
    "server/drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t";
}

mqtt_server_api_base_t::mqtt_server_api_base_t(const QString& _version,
                                               QPointer<data_api_elements_t> _elements,
                                               QObject* _parent)
    : QObject(_parent),
      elements(_elements),
      api_root(api_topics::root(_version)),
      version_word(QStringLiteral("base")) {
    version_word = _version;
}

mqtt_server_api_base_t::~mqtt_server_api_base_t() {
    utility::log_line(QStringLiteral("Destructor ") + version_word, 4, "~mqtt_server_api_base_t",
                      source, __LINE__);
}

bool mqtt_server_api_base_t::getEnable() const {
    return enabled;
}

void mqtt_server_api_base_t::setEnable(bool _enable) {
    enabled = _enable;
    Q_EMIT enable_change(version_word, _enable);
}

void mqtt_server_api_base_t::init_route(bool _enable) {
    setEnable(_enable);
    const base::mutex_locker_t locker(&router_mutex);
    init_no_route_path();
    init_route_path();
}

void mqtt_server_api_base_t::handlerMessage(const QString& username, const QString& topic,
                                            const QJsonObject& payload) {
    QJsonObject answer;  // empty too when the route's answer is no object
    {
        const base::mutex_locker_t locker(&router_mutex);
        answer = router.process(topic, QVariant(payload), {}).toJsonValue().toObject();
    }
    if (!answer.isEmpty()) {
        response(username, topic, payload, answer);
    }
}

void mqtt_server_api_base_t::response(const QString& _username, const QString& _request_topic,
                                      const QJsonObject& _request_payload,
                                      const QJsonObject& _response_payload) {
    const QString path_key = QStringLiteral("response_topic_default");
    QString topic = _request_topic;
    QJsonObject body = _response_payload;
    if (body.contains(path_key)) {
        topic = api_topics::response(api_root, _username, body.take(path_key).toString());
    } else {
        topic = comunication::api_topics::answer(topic);
    }
    topic = topic.trimmed();
    if (topic.isEmpty()) {
        utility::log_line(QStringLiteral("Internal error, missing response topic default!!!"), 2,
                          "response", source, __LINE__);
        return;
    }
    const QString uuid = _request_payload.value(QLatin1String("uuid")).toString();
    if (!uuid.isEmpty()) {
        body.insert(QStringLiteral("uuid"), uuid);
    }
    Q_EMIT publish_message(topic, body, false);
}

void mqtt_server_api_base_t::handlerUpdateMessageAllUser(const QString& id,
                                                         const QStringList& changed) {
    publish_retained(packet_update(id, changed));
}

void mqtt_server_api_base_t::handlerUpdateMessageAllUser(const QStringList& ids) {
    for (const QString& id : ids) {
        publish_retained(packet_update(id));
    }
}

void mqtt_server_api_base_t::handlerUpdateMessageByUser(const QString& user,
                                                        const QStringList& ids) {
    for (const QString& id : ids) {
        publish_retained(packet_update(user, id));
    }
}

void mqtt_server_api_base_t::publish_retained(const packets_t& _packets) {
    for (auto packet = _packets.cbegin(); packet != _packets.cend(); ++packet) {
        Q_EMIT publish_message(packet.key(), packet.value(), true);
    }
}

}  // namespace interfaces
