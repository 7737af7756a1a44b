#pragma once

#include <QHash>
#include <QJsonObject>
#include <QJsonValue>
#include <array>
#include <utility>

#include "base/locks.h"
#include "base/small_table_t.h"
#include "database/permission.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_t.h"

namespace interfaces {

/// One element of the installation as API users see it: its functions with their items and
/// current values, and what each user may do with it. Lives in the plugin's thread.
///
/// Locks: the collection's lock first, then the events mutex, then the functions mutex.
class data_api_element_object_t : public data_api_t {
    Q_OBJECT

 public:
    /// Permission words of the ACL.
    inline static const QString readwrite = database::permission::readwrite;
    inline static const QString read = database::permission::read;
    inline static const QString write = database::permission::write;
    inline static const QString deny = database::permission::deny;

    /// Loads itself with init(); an id that the database lacks gives an empty, silent object.
    data_api_element_object_t(QPointer<database::database_t> db, const QString& id_element,
                              QObject* parent);
    ~data_api_element_object_t() override;

    /// Reads everything again. Grants found meanwhile are not announced, denials are.
    void init();
    /// Empties the object and stops listening. The ACL is kept.
    void reset();
    /// Adds the functions that are not there yet; nothing is cleared.
    void populateFunctions() TORLAN_EXCLUDES(functions_mutex);

    QString getIdElement() const;
    QString getNameElement() const;
    int getTypeElement() const;
    /// Item id -> function names. A second function on an item is not listed.
    QHash<QString, QStringList> getFunctionIds() const;
    /// Function name -> item id.
    QHash<QString, QString> getFunctioName() const;
    /// Function name -> current value.
    QHash<QString, QString> getFunctionValues() const;
    QString getItemsValue(const QString& id_item);
    QString getScenaryValue(const QString& id_scenary);
    /// Files a function under its item; what is there already stays.
    void addIdItem(const QString& id_item, const QString& function, const QString& value);

    /// Asks for a function's new value; it arrives as a change. False: unknown or no such value.
    bool requestSetValue(std::pair<QString, QJsonValue> function_value);
    bool setExecScena(const QString& id_scenary, bool execute);
    bool setItemValue(const QString& id_item, const QString& value);

    /// Reads the grants of all API users. A user's bits are kept until the element is reset: the
    /// host announces a changed grant as a change of the element.
    void populatePermission();
    void update_permission();
    /// Whether the user has one of the bits (1 read, 2 write) of @p mask.
    bool check_authorization(const QString& username, unsigned int mask);
    /// Both test the read bit; @p code becomes 202 or 401.
    bool autorized_read(const QString& username, int& code);
    bool autorized_write(const QString& username, int& code);
    void add_acl(QString username);
    void remove_username_acl(const QString& username);
    bool send_signals_acl(const QString& username, const QString& permission);
    void remove_acl();
    /// User name -> permission bits.
    QHash<QString, quint64> getPermissions() const;
    /// Whether any API user has a grant; without one the element does not follow changes.
    bool getPermission() const;
    /// User name -> permission word.
    QHash<QString, QString> getACL();
    /// Keeps one copy of the users' rights on both elements where they are the same.
    void share_rights(const data_api_element_object_t& _other);
    /// As getFunctionValues() and getACL(), without a copy.
    const base::small_table_t<QString>& values() const;
    const base::small_table_t<QString>& words() const;
    /// Listens (true) or not (false) to value changes of the database.
    void init_event(bool enable);

 Q_SIGNALS:
    /// @param _functions item ids after a load, full function names after a value change
    void value_change(const QString& _id_element, QHash<QString, QString> function_values,
                      const QStringList& _functions);
    void add_acl_element(const QString& _username, const QString& _id_element,
                         const QString& _permission);
    void remove_acl_element(const QString& _username, const QString& _id_element);

 private Q_SLOTS:
    void update_value(const QString& _key);
    void onRealtimeChangeScenaryObjects(const QJsonObject&, const QString& _key)
        TORLAN_EXCLUDES(events_mutex);
    void onRealtimeChangeItem(const QJsonObject& _packet, const QString& _key)
        TORLAN_EXCLUDES(events_mutex);
    void onPersistentStatusThermo(const QJsonObject& _packet, const QString& _key)
        TORLAN_EXCLUDES(events_mutex);

 private:
    void add_functions() TORLAN_REQUIRES(functions_mutex);
    void add_mapped_functions() TORLAN_REQUIRES(functions_mutex);
    void add_scenario_function() TORLAN_REQUIRES(functions_mutex);
    void add_thermostat_functions() TORLAN_REQUIRES(functions_mutex);

    bool initialising = false;
    base::mutex_t events_mutex;     ///< held by the three change slots
    base::mutex_t functions_mutex;  ///< held by populateFunctions()
    const QString id_element;
    QString name_element;
    int type = -1;
    base::small_table_t<QStringList> function_ids;
    base::small_table_t<QString> function_names;
    base::small_table_t<QString> function_values;
    base::small_table_t<quint64> permissions;
    bool permission = false;
    base::small_table_t<QString> acl;
    /// Unique connections from one sender are quadratic in the receivers, so the element itself
    /// remembers which of the three are connected.
    std::array<QMetaObject::Connection, 3> listening;
};

}  // namespace interfaces
