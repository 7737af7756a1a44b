#pragma once

#include <QJsonObject>
#include <QPointer>

#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "drivers/driver/capability/with_capabilities_t.h"
#include "drivers/driver/plugin_driver_interface_t.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"

namespace interfaces {

/// Root object of the plugin: creates the element collection and the API server, and relays
/// between them and the host's endpoint, always on the endpoint's own thread.
///
/// The second base is spelled unqualified: its name is one that the host casts by.
class plugin_driver_api_t : public plugin_driver_interface_t,
                            public WithCapabilities<plugin_driver_api_t, IComunication> {
    Q_OBJECT
    Q_INTERFACES(interfaces::plugin_driver_interface_t)

 public:
    plugin_driver_api_t();
    ~plugin_driver_api_t() override;

    void* getCapability(const char* name) override;

 public Q_SLOTS:
    /// Nothing in this driver.
    void init_event_to_dispatcher(bool _enable, QObject* _object) override;
    /// Creates what is not there yet: the collection, disabled, and the server. Always true.
    bool finalize_database_initialization() override;
    void start(bool _init) override;
    bool finalize_comunication_initialization() override;
    void init_comunication_event(bool _init) override;

 private Q_SLOTS:
    void onComunicationAPIMessageIncoming(const QString& _version, const QString& _username,
                                          const QString& _client_id, const QString& _type,
                                          const QString& _topic, const QJsonObject& _payload,
                                          const bool& _retain);
    void publish_message(const QString& _topic, const QJsonObject& _payload, bool _retain);
    void publish_delete_message(const QString& _topic, bool _retain);
    void subscription_status_api(bool _value);

 private:
    QPointer<data_api_elements_t> elements;
    QPointer<mqtt_server_t> mqtt_server;
};

}  // namespace interfaces
