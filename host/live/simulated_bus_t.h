#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <random>

#include "live/live_bus_port_t.h"
#include "live/realtime_writer_t.h"
#include "live/write_gate_t.h"

namespace database::live {

/// How temperatures drift: every interval, each chosen item by at most 0.1 degrees.
struct drift_t {
    /// Asked for each item at every step; null: what thermostats measure drifts.
    std::function<bool(const QString& _id_item)> chosen;
    int interval_ms = 5000;
    quint32 seed = 1;  ///< the same seed gives the same walk
};

/// Stands in for a bus driver: answers every write request that the gate lets through by setting
/// the value, and can let temperatures drift. A request for the value that is there already is
/// answered too, as a real bus repeats the telegram: whoever asked waits for an answer.
class simulated_bus_t : public QObject {
    Q_OBJECT

 public:
    /// @param _gate what asks for values
    simulated_bus_t(database_t* _database, realtime_writer_t* _realtime, const write_gate_t* _gate,
                    QObject* _parent = nullptr);
    ~simulated_bus_t() override;

    /// Leaves the requests for what a real bus owns to it; their values do not drift either.
    void leave_to(const live_bus_port_t* _bus) { real = _bus; }

    /// Starts (again) or stops the drift.
    void simulate(bool _enable, const drift_t& _drift = {});

 private:
    void step();
    QStringList drifting_items() const;

    QPointer<database_t> database;
    realtime_writer_t* const realtime;
    const live_bus_port_t* real = nullptr;  ///< null: there is none
    drift_t drift;
    std::mt19937 random;
    QTimer timer;
};

}  // namespace database::live
