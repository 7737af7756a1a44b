#pragma once

#include <QJsonObject>

#include "comunication/protobase_t.h"
#include "comunication/subscribe_t.h"

namespace comunication {

/// The server's MQTT endpoint as drivers see it. Lives in a thread of its own with an event
/// loop; every operation is called there. It outlives the drivers or is disconnected first.
class protoserver_t : public protobase_t {
    Q_OBJECT

 public:
    explicit protoserver_t(QObject* _parent = nullptr);
    ~protoserver_t() override;

    /// Whether api_message is emitted. False at construction.
    virtual void set_enable_api_message(bool _enable) = 0;

    /// Subscribes or unsubscribes the API status topics "local/api/+/+/status/#". Subscribing
    /// again makes the broker send its retained status messages once more.
    virtual void subscription_status_api(utility::subscribe_t _subscribe) = 0;

    /// publish() of a JSON object.
    void eventPublish(const QString& _topic, const QJsonObject& _payload, utility::qos_t _qos,
                      bool _retain, bool _reserved) {
        publish(_topic, QJsonValue(_payload), _qos, _retain, _reserved);
    }

 Q_SIGNALS:
    /// One message of an API topic "local/api/<version>/<user>/...".
    /// @param version third topic level, e.g. "v1"
    /// @param username fourth topic level, for requests and for status messages
    /// @param client_id fifth topic level of a request, empty for a status message
    /// @param type "request" or "status"
    /// @param topic the whole topic
    /// @param payload the JSON object; an empty payload is an empty object
    /// @param retain whether the broker sent it as a retained message
    void api_message(const QString& version, const QString& username, const QString& client_id,
                     const QString& type, const QString& topic, const QJsonObject& payload,
                     const bool& retain);
};

}  // namespace comunication
