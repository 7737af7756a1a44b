#pragma once

#include <QHash>
#include <QJsonObject>
#include <QScopedPointer>
#include <QStringList>
#include <functional>

#include "base/locks.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"
#include "utility/timer_debounce_t.h"

namespace interfaces {

/// Every element that the API exposes, and each user's permission word on it. Follows the
/// database: single changes at once, bulk changes by one reload 100 ms after the last.
///
/// Created empty; setEnabled(true) or init() loads. Slots run in the object's thread; the public
/// operations take the recursive lock, which is taken before any element's own mutexes.
class data_api_elements_t : public data_api_t {
    Q_OBJECT

 public:
    /// User name -> element id -> permission word.
    using acl_t = QHash<QString, QHash<QString, QString>>;

    data_api_elements_t(QPointer<database::database_t> db, QObject* parent);
    ~data_api_elements_t() override;

    void init();
    void reset();
    /// Brings the table in line with the database without a reset.
    void reinit();
    void addElement(const QString& id);
    void removeElement(const QString& id);
    /// Reads the grants of all elements again.
    void check_permission();
    void populate_acl();
    void populate_acl(const QString& id);
    /// Listens (true) or not (false) to the database's structural changes.
    void init_event(bool enable);

    bool getEnabled() const;
    /// Always resets first; loads when @p enable.
    void setEnabled(bool enable);

    QStringList get_api_usernames(bool _enabled) const;
    QStringList get_api_usernames(const QString& _version, bool _enabled) const;
    QStringList get_api_users(bool _enabled) const;
    QHash<QString, data_api_element_object_t*> get_data_api_elements();
    /// Null when the id is unknown.
    QPointer<data_api_element_object_t> get_data_api_element_object(const QString& id);
    /// Takes no lock: callers are in the object's own thread, where alone the table is written.
    acl_t get_data_api_elements_acl() TORLAN_NO_THREAD_SAFETY_ANALYSIS;
    /// Calls @p _visit for each element, in table order, under the lock.
    void for_each_element(
        const std::function<void(const QString&, data_api_element_object_t&)>& _visit);

 Q_SIGNALS:
    /// @param _functions item ids after a load, full function names after a value change
    void value_change(const QString& _id_element, const QStringList& _functions);
    void on_reset_api_elements(bool _start, QStringList _keys);
    void acl_changes();
    void add_acl_element(const QString& _username, const QString& _id_element,
                         const QString& _permission);
    void remove_acl_element(const QString& _username, const QString& _id_element);

 public Q_SLOTS:
    void onPersistentChangeDatabase(const QJsonObject& _packet);
    void onRealtimeChangeDatabase(const QJsonObject& _packet);
    void onPersistentChangeElements(const QJsonObject& _packet);
    void onPersistentChangeElement(const QJsonObject& _packet, const QString& _key);
    void onRealtimeChangeItems(const QJsonObject& _packet);
    void onPersistentChangeUsers(const QJsonObject& _packet);
    void onPersistentChangeUser(const QJsonObject& _packet, const QString& _key);

 private Q_SLOTS:
    void element_value_change(const QString& _id_element, QHash<QString, QString> function_values,
                              const QStringList& _functions);
    void element_add_acl_element(const QString& _username, const QString& _id_element,
                                 QString _permission);
    void element_remove_acl_element(const QString& _username, const QString& _id_element);

 private:
    void load_new_element(const QString& _id) TORLAN_REQUIRES(lock);
    void reload();
    void trigger_reload();

    QStringList api_usernames TORLAN_GUARDED_BY(lock);
    base::recursive_mutex_t lock;
    QHash<QString, data_api_element_object_t*> elements TORLAN_GUARDED_BY(lock);
    QScopedPointer<utility::timer_debounce_t<>> reload_timer;
    bool enabled = true;
    acl_t acl TORLAN_GUARDED_BY(lock);
    /// Read last: the next one has the same rights more often than not.
    QPointer<data_api_element_object_t> former TORLAN_GUARDED_BY(lock);
};

}  // namespace interfaces
