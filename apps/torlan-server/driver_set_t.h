#pragma once

#include <QString>
#include <vector>

#include "loader/loaded_driver_t.h"

namespace comunication {
class protoserver_t;
}

namespace torlan {

/// The host's drivers through their life: load, initialise, start, stop, gone. Host thread only;
/// the database and the endpoint outlive it.
class driver_set_t {
 public:
    driver_set_t();
    Q_DISABLE_COPY_MOVE(driver_set_t)
    ~driver_set_t();

    /// Loads every driver of a folder; what is refused goes to the log. One sentence when there
    /// is none at all.
    QString load(const QString& _folder);

    /// Hands out the database and the endpoint. A driver that does not take them is logged and
    /// dropped; one sentence when none is left.
    QString init(database::database_t* _database, comunication::protoserver_t* _endpoint);

    void start();
    /// Nothing when they are not started.
    void stop();
    /// Stop and start: every state is published again.
    void restart();

    /// Deletes the drivers.
    void clear() { drivers.clear(); }

 private:
    std::vector<loader::loaded_driver_t> drivers;
    bool started = false;
};

}  // namespace torlan
