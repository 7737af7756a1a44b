#pragma once

#include <QPointer>
#include <QString>

#include "drivers/driver/plugin_driver_interface_t.h"
#include "loader/driver_metadata_t.h"

namespace comunication {
class protoserver_t;
}

namespace bus {
class bus_port_t;
}

namespace loader {

/// A loaded driver. Owns the driver object and deletes it; the library itself stays in memory,
/// because calls that the driver has posted and objects that it has handed out may still use it.
class loaded_driver_t {
 public:
    loaded_driver_t(QString _file, driver_metadata_t _metadata,
                    interfaces::plugin_driver_interface_t* _driver);
    ~loaded_driver_t();
    loaded_driver_t(loaded_driver_t&& _other) noexcept;
    loaded_driver_t& operator=(loaded_driver_t&&) = delete;

    const QString& get_file() const { return file; }
    const driver_metadata_t& get_metadata() const { return metadata; }
    /// Never null unless somebody else has deleted the object.
    interfaces::plugin_driver_interface_t* get_driver() const;

    /// Hands out the database, then the endpoint to a driver that uses one, then the bus, null:
    /// there is none, to one that moves values on it. False when the driver does not take them; it
    /// has logged why. None is owned.
    bool init(database::database_t* _database, comunication::protoserver_t* _endpoint,
              bus::bus_port_t* _bus) const;

 private:
    QString file;
    driver_metadata_t metadata;
    QPointer<QObject> driver;
};

}  // namespace loader
