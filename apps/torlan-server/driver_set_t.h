#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "base/result_t.h"
#include "loader/loaded_driver_t.h"

namespace comunication {
class protoserver_t;
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

    /// Hands out the database and the endpoint. A driver that does not take them is logged and
    /// dropped; a failure when none is left.
    base::result_t init(database::database_t* _database, comunication::protoserver_t* _endpoint);

    void start();
    /// Nothing when they are not started.
    void stop();
    /// Stops, and starts when the stop has gone through the endpoint's thread and back; so every
    /// state is published again.
    void restart(comunication::protoserver_t* _endpoint);

    /// Deletes the drivers.
    void clear() { drivers.clear(); }

 private:
    std::vector<loader::loaded_driver_t> drivers;
    bool started = false;
    bool restarting = false;  ///< stopped, and a start is on its way
};

}  // namespace torlan
