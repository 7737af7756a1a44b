#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"

#include "logs/log_line.h"

namespace interfaces {

using comunication::protoserver_t;
using comunication::utility::qos_t;
using comunication::utility::subscribe_t;

namespace {

// Not this file's name; readers of the log know it by this one.
constexpr const char* source = "server/drivers/plugins/plugin_driver_api/restful_api_t";
constexpr auto queued_unique =
    static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection);

}  // namespace

plugin_driver_api_t::plugin_driver_api_t()
    : plugin_driver_interface_t(QStringLiteral("plugin_driver_api"), QStringLiteral("0.1"), true) {}

plugin_driver_api_t::~plugin_driver_api_t() {
    end_calls();
    utility::log_line(QStringLiteral("Destructor ") + name, 4, "~plugin_driver_api_t", source, 17);
}

void* plugin_driver_api_t::getCapability(const char* _name) {
    return dispatchCapability(_name);
}

void plugin_driver_api_t::init_event_to_dispatcher(bool, QObject*) {}

bool plugin_driver_api_t::finalize_database_initialization() {
    utility::log_line(QStringLiteral("Driver id: ") + id, 6, "finalize_database_initialization",
                      source, 28);
    if (elements.isNull()) {
        elements = new data_api_elements_t(database, this);
        elements->setEnabled(false);
    }
    if (mqtt_server.isNull()) {
        mqtt_server = new mqtt_server_t(elements, this);
    }
    return true;
}

bool plugin_driver_api_t::finalize_comunication_initialization() {
    init_comunication_event(true);
    return true;
}

void plugin_driver_api_t::init_comunication_event(bool _init) {
    if (_init) {
        connect(Comunication(), &protoserver_t::api_message, this,
                &plugin_driver_api_t::onComunicationAPIMessageIncoming, queued_unique);
    } else {
        disconnect(Comunication(), &protoserver_t::api_message, this,
                   &plugin_driver_api_t::onComunicationAPIMessageIncoming);
    }
}

void plugin_driver_api_t::start(bool _init) {
    if (mqtt_server.isNull()) {
        Comunication([](protoserver_t* endpoint) { endpoint->set_enable_api_message(false); });
        return;
    }
    // Made for a stop as well and never undone; repeated starts do not double them.
    connect(mqtt_server, SIGNAL(publish_message(const QString&, const QJsonObject&, bool)), this,
            SLOT(publish_message(const QString&, const QJsonObject&, bool)), queued_unique);
    connect(mqtt_server, SIGNAL(publish_delete_message(const QString&, bool)), this,
            SLOT(publish_delete_message(const QString&, bool)), queued_unique);
    connect(mqtt_server, SIGNAL(subscription_status_api(bool)), this,
            SLOT(subscription_status_api(bool)), queued_unique);
    Comunication([server = mqtt_server, _init](protoserver_t* endpoint) {
        endpoint->set_enable_api_message(_init);
        if (server) {
            server->init_route_path(_init);
        }
    });
}

void plugin_driver_api_t::onComunicationAPIMessageIncoming(
    const QString& _version, const QString& _username, const QString& _client_id,
    const QString& _type, const QString& _topic, const QJsonObject& _payload, const bool& _retain) {
    if (mqtt_server.isNull()) {
        utility::log_line(QStringLiteral("API mqtt server is nullptr ... "), 2,
                          "onComunicationAPIMessageIncoming", source, 107);
        return;
    }
    mqtt_server->handlerMessage(_version, _username, _client_id, _type, _topic, _payload, _retain);
}

void plugin_driver_api_t::publish_message(const QString& _topic, const QJsonObject& _payload,
                                          bool _retain) {
    Comunication([_topic, _payload, _retain](protoserver_t* endpoint) {
        endpoint->eventPublish(_topic, _payload, qos_t::exactly_once, _retain, false);
    });
}

void plugin_driver_api_t::publish_delete_message(const QString& _topic, bool _retain) {
    Comunication([_topic, _retain](protoserver_t* endpoint) {
        endpoint->publish_delete(_topic, qos_t::exactly_once, _retain);
    });
}

void plugin_driver_api_t::subscription_status_api(bool _value) {
    Comunication([_value](protoserver_t* endpoint) {
        endpoint->subscription_status_api(_value ? subscribe_t::subscribe
                                                 : subscribe_t::unsubscribe);
    });
}

}  // namespace interfaces
