#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "base/result_t.h"
#include "loader/loaded_driver_t.h"

namespace comunication {
class protoserver_t;
}

namespace bus {
class bus_port_t;
}

namespace torlan {

/// The host's drivers through their life: load, initialise, start, stop, gone. Host thread only;
/// the database and the endpoint outlive it.
class driver_set_t : public QObject {
    Q_OBJECT

 public:
    explicit driver_set_t(QObject* _parent = nullptr);
    ~driver_set_t() override;

    /// Loads every driver of a folder; what is refused goes to the log. A failure when there is
    /// none at all.
    base::result_t load(const QString& _folder);

    /// Hands out the database, the endpoint and the bus, null: none. A driver that does not take
    /// them is logged and dropped; a failure when none is left.
    base::result_t init(database::database_t* _database, comunication::protoserver_t* _endpoint,
                        bus::bus_port_t* _bus);

    void start();
    /// Nothing when they are not started.
    void stop();

    /// Deletes the drivers.
    void clear() { drivers.clear(); }

 private:
    void start_or_stop(bool _start) const;

    std::vector<loader::loaded_driver_t> drivers;
    bool started = false;
};

}  // namespace torlan
