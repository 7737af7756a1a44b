#pragma once

#include <QList>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <memory>
#include <utility>

#include "database/database_t.h"

namespace interfaces {

/// Reads the host's database and asks it for values. A database that is gone is an empty one.
/// A value type; the database's thread.
class database_view_t {
 public:
    using element_t = database::persistent::objects::ps_object_element_t;
    using thermostat_t = database::persistent::objects::ps_object_thermostat_t;

    explicit database_view_t(QPointer<database::database_t> _database);

    QStringList element_ids() const;  ///< in key order
    bool has_element(const QString& _id) const;
    /// The element or null; valid until control returns to the event loop.
    const element_t* element(const QString& _id) const;
    /// A copy of the element or null.
    std::unique_ptr<const element_t> clone_element(const QString& _id) const;
    /// A private copy of the thermostat or null.
    std::unique_ptr<const thermostat_t> thermostat(const QString& _id) const;

    /// Current value of an item; "" for a blank or unknown id.
    QString item_value(const QString& _id) const;
    /// "true" or "false"; "" for a blank or unknown id.
    QString scenary_value(const QString& _id) const;
    /// Asks for a new value; false when there is no such item.
    bool request_item(const QString& _id, const QString& _value) const;
    /// Asks for an execution state; false when there is no such scenario.
    bool request_scenary(const QString& _id, bool _execution) const;

    QStringList user_ids(bool _enabled) const;
    QStringList usernames(bool _enabled) const;
    QStringList usernames(const QString& _version, bool _enabled) const;
    QString username(const QString& _user_id) const;
    /// Permission bits of a user on an element: 1 read, 2 write; 0 or negative: none.
    int permission(const QString& _element_id, const QString& _user_id) const;

    /// Senders of the change signals; null when the database is gone.
    const QObject* persistent_notifier() const;
    const QObject* realtime_notifier() const;

 private:
    const database::persistent::ps_data_t* data() const;

    QPointer<database::database_t> database;
};

}  // namespace interfaces
