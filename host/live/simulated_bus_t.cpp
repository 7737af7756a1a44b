#include "live/simulated_bus_t.h"

#include <algorithm>

namespace database::live {

using persistent::ps_requests_t;

simulated_bus_t::simulated_bus_t(database_t* _database, realtime_writer_t* _realtime,
                                 const write_gate_t* _gate, QObject* _parent)
    : QObject(_parent), database(_database), realtime(_realtime) {
    connect(_gate, &write_gate_t::item_asked, this,
            [this](const QString& _id, const QString& _value) {
                if (real == nullptr || !real->owns_item(_id)) {
                    realtime->write_item(_id, _value);
                }
            });
    connect(
        _database->getPersistent()->getRequests(), &ps_requests_t::scenaryExecutionRequested, this,
        [this](const QString& _id, bool _execution) {
            if (real == nullptr || !real->owns_scenario(_id)) {
                realtime->write_scenario(_id, _execution);
            }
        },
        Qt::QueuedConnection);
    connect(&timer, &QTimer::timeout, this, &simulated_bus_t::step);
}

simulated_bus_t::~simulated_bus_t() = default;

void simulated_bus_t::simulate(bool _enable, const drift_t& _drift) {
    timer.stop();
    drift = _drift;
    random.seed(drift.seed);
    if (_enable) {
        timer.start(drift.interval_ms);
    }
}

void simulated_bus_t::step() {
    const QStringList ids = database ? drifting_items() : QStringList();
    for (const QString& id : ids) {
        const auto* item = database->getRealtime()->getItems()->list(id);
        // Not a distribution of the library: those differ between compilers.
        const int direction = int(random() % 3) - 1;
        const bool is_ours = real == nullptr || !real->owns_item(id);
        if (item != nullptr && is_ours && direction != 0) {
            const double next = item->getValue().toDouble() + 0.1 * direction;
            realtime->write_item(id, QString::number(std::clamp(next, 10.0, 35.0), 'f', 1));
        }
    }
}

QStringList simulated_bus_t::drifting_items() const {
    QStringList ids;
    if (drift.chosen) {
        ids = database->getRealtime()->getItems()->getObjects().keys();
        ids.removeIf([this](const QString& _id) { return !drift.chosen(_id); });
        return ids;
    }
    const auto thermostats = database->getPersistent()->getData()->getThermo()->getObjects();
    for (const persistent::objects::ps_object_thermostat_t* thermostat : thermostats) {
        ids.append(thermostat->getThermo()->getIdActual());
    }
    return ids;
}

}  // namespace database::live
