#pragma once

#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include "database/database_t.h"

namespace interfaces {

/// Base of every driver: its identity, the server's database and the lifecycle that the host
/// drives: init_database(), then capabilities, then start(true).
///
/// The order of the virtual operations is binary contract with the host: keep it. The class has
/// no meta-object of its own.
class plugin_driver_interface_t : public QObject {
 public:
    /// @param name driver name, also the id until init_database() derives one
    /// @param version driver version
    /// @param use_persistent_topic whether init_database() makes the id from the database's topic
    /// Never fails: an empty name or version is only logged.
    plugin_driver_interface_t(const QString& name, const QString& version,
                              bool use_persistent_topic);
    ~plugin_driver_interface_t() override;

    /// The driver's sub-object for an optional host service, by class name; null when it has none.
    virtual void* getCapability(const char* name);
    virtual void init_event_to_dispatcher(bool enable, QObject* object) = 0;
    /// Called by init_database() once the id is settled; its result is init_database()'s.
    virtual bool finalize_database_initialization() = 0;
    /// Takes the database (observed, not owned) and settles the driver id. False: null database
    /// or no id; the reason is in the log.
    virtual bool init_database(database::database_t* database);
    /// Starts (true) or stops (false) the driver.
    virtual void start(bool init) = 0;

 protected:
    QString id;
    QString name;
    QString version;
    bool use_persistent_topic;
    QPointer<database::database_t> database;
    /// Characters allowed in names; for derived drivers. Not a valid regular expression as it
    /// stands ("\w-_"): do not compile it.
    QString valid_name_pattern;
    void* reserved;
    QJsonObject configuration;
    QList<QString> reserved_list_1;
    QString reserved_text;
    QList<QString> reserved_list_2;
};

}  // namespace interfaces

/// The host casts drivers by this word, singular; their metadata carries the plural.
Q_DECLARE_INTERFACE(interfaces::plugin_driver_interface_t, "org.kelma.torlan.interface")
