#pragma once

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QScopedPointer>
#include <QStringList>

#include "base/locks.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "utility/timer_debounce_t.h"

namespace interfaces {

class mqtt_server_api_base_t;

/// Front of the MQTT API: dispatches messages to the handler of their version and keeps every
/// user's retained element topics in step with the collection.
///
/// Lives in the plugin's thread; only init_route_path() is called on the endpoint's.
class mqtt_server_t : public QObject {
    Q_OBJECT

 public:
    mqtt_server_t(QPointer<data_api_elements_t> elements, QObject* parent);
    ~mqtt_server_t() override;

    /// Connects or disconnects the collection's reset, value and ACL signals.
    void init_event(bool enable);
    /// Connects or disconnects the collection's signals of single ACL entries.
    void init_event_modify_acl(bool enable);
    /// One message as the endpoint delivers it; @p _client_id is not used.
    void handlerMessage(const QString& _version, const QString& _username,
                        const QString& _client_id, const QString& _type, const QString& _topic,
                        const QJsonObject& _payload, const bool& _retain);
    /// Unless an ACL pass is due anyway: has the broker send its retained messages again and
    /// runs the pass at once.
    void clean_up_topic_element();

 Q_SIGNALS:
    void publish_message(const QString& _topic, const QJsonObject& _payload, bool _retain);
    void publish_delete_message(const QString& _topic, bool _retain);
    void subscription_status_api(bool _value);

 public Q_SLOTS:
    /// Installs (true) or removes (false) every handler's routes. Endpoint's thread.
    void init_route_path(const bool& _enable) TORLAN_EXCLUDES(route_barrier);
    void enable_change(const QString& _version, const bool& _enable)
        TORLAN_EXCLUDES(mutex, route_barrier);
    void onUpdateElement(const QString& _id_element, const QStringList& _functions);
    void onUpdateElements(const QStringList& _ids_element);

 private Q_SLOTS:
    /// From the collection: starts the debounce. From the timer: runs the ACL pass.
    void on_acl_changes();
    void on_value_change(const QString& _id_element, const QStringList& _functions);
    void on_publish_message(const QString& _topic, const QJsonObject& _payload, bool _retain);
    /// Deliberately does nothing; the elements' own signals follow.
    void on_reset_api_elements(bool _start, QStringList _keys);
    void add_acl_element(const QString& _username, const QString& _id_element,
                         const QString& _permission);
    void remove_acl_element(const QString& _username, const QString& _id_element);

 private:
    /// Calls @p _update for every enabled handler; a warning when there is none.
    template <class Update>
    void update_enabled_handlers(const char* _function, const Update& _update);
    void delete_invalid(mqtt_server_api_base_t& _handler, const QString& _username,
                        const QString& _topic, const QJsonObject& _payload, bool _retain);

    QString object_name;
    QPointer<data_api_elements_t> elements;
    QHash<QString, mqtt_server_api_base_t*> handlers;  ///< by version word; children of this
    bool enabled TORLAN_GUARDED_BY(mutex) = false;
    base::mutex_t mutex;  ///< guards enabled and the transitions of enable_change
    QScopedPointer<utility::timer_debounce_t<>> acl_timer;
    bool acl_pass_due = false;  ///< true while the timer calls on_acl_changes
    /// Held while init_route_path connects; enable_change only passes through it when it begins,
    /// so that the collection never loads while nobody listens yet.
    base::mutex_t route_barrier;
};

}  // namespace interfaces
