// What data_api_elements_t hears from the database and passes on from its elements.

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"

namespace interfaces {

namespace {

/// Connects or disconnects one notification; a sender that is gone has none.
void listen(const QObject* _sender, const char* _signal, QObject* _receiver, const char* _slot,
            bool _enable) {
    if (_sender == nullptr) {
        return;
    }
    if (_enable) {
        QObject::connect(
            _sender, _signal, _receiver, _slot,
            static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection));
    } else {
        QObject::disconnect(_sender, _signal, _receiver, _slot);
    }
}

}  // namespace

void data_api_elements_t::init_event(bool enable) {
    const QObject* persistent = view.persistent_notifier();
    const QObject* realtime = view.realtime_notifier();
    listen(persistent, SIGNAL(onPersistentChangeDatabase(const QJsonObject&)), this,
           SLOT(onPersistentChangeDatabase(const QJsonObject&)), enable);
    listen(realtime, SIGNAL(onRealtimeChangeDatabase(const QJsonObject&)), this,
           SLOT(onRealtimeChangeDatabase(const QJsonObject&)), enable);
    listen(persistent, SIGNAL(onPersistentChangeElements(const QJsonObject&)), this,
           SLOT(onPersistentChangeElements(const QJsonObject&)), enable);
    listen(persistent, SIGNAL(onPersistentChangeElement(const QJsonObject&, const QString&)), this,
           SLOT(onPersistentChangeElement(const QJsonObject&, const QString&)), enable);
    listen(realtime, SIGNAL(onRealtimeChangeItems(const QJsonObject&)), this,
           SLOT(onRealtimeChangeItems(const QJsonObject&)), enable);
    listen(persistent, SIGNAL(onPersistentChangeUsers(const QJsonObject&)), this,
           SLOT(onPersistentChangeUsers(const QJsonObject&)), enable);
    listen(persistent, SIGNAL(onPersistentChangeUser(const QJsonObject&, const QString&)), this,
           SLOT(onPersistentChangeUser(const QJsonObject&, const QString&)), enable);
}

void data_api_elements_t::trigger_reload() {
    const base::mutex_locker_t locker(&lock);
    reload_timer->trigger();
}

void data_api_elements_t::onPersistentChangeDatabase(const QJsonObject&) {
    trigger_reload();
}

void data_api_elements_t::onRealtimeChangeDatabase(const QJsonObject&) {
    trigger_reload();
}

void data_api_elements_t::onPersistentChangeElements(const QJsonObject&) {
    trigger_reload();
}

void data_api_elements_t::onRealtimeChangeItems(const QJsonObject&) {
    trigger_reload();
}

void data_api_elements_t::onPersistentChangeElement(const QJsonObject&, const QString& _key) {
    const base::mutex_locker_t locker(&lock);
    if (view.has_element(_key)) {
        addElement(_key);
    } else {
        removeElement(_key);
    }
}

void data_api_elements_t::onPersistentChangeUsers(const QJsonObject&) {
    check_permission();
}

void data_api_elements_t::onPersistentChangeUser(const QJsonObject&, const QString&) {
    check_permission();
}

void data_api_elements_t::element_value_change(const QString& _id_element, QHash<QString, QString>,
                                               const QStringList& _functions) {
    Q_EMIT value_change(_id_element, _functions);
}

void data_api_elements_t::element_add_acl_element(const QString& _username,
                                                  const QString& _id_element, QString _permission) {
    Q_EMIT add_acl_element(_username, _id_element, _permission);
}

void data_api_elements_t::element_remove_acl_element(const QString& _username,
                                                     const QString& _id_element) {
    Q_EMIT remove_acl_element(_username, _id_element);
}

}  // namespace interfaces
