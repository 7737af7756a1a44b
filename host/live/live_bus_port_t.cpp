#include "live/live_bus_port_t.h"

namespace database::live {

using persistent::ps_requests_t;

live_bus_port_t::live_bus_port_t(database_t* _database, realtime_writer_t* _realtime,
                                 const write_gate_t* _gate, const bus::bus_settings_t& _settings,
                                 QObject* _parent)
    : bus_port_t(_parent), database(_database), realtime(_realtime), given(_settings) {
    connect(_gate, &write_gate_t::item_asked, this,
            [this](const QString& _id, const QString& _value) {
                if (owns_item(_id)) {
                    Q_EMIT value_requested(_id, _value);
                }
            });
    connect(
        _database->getPersistent()->getRequests(), &ps_requests_t::scenaryExecutionRequested, this,
        [this](const QString& _id, bool _execution) {
            if (owns_scenario(_id)) {
                Q_EMIT execution_requested(_id, _execution);
            }
        },
        Qt::QueuedConnection);
}

live_bus_port_t::~live_bus_port_t() = default;

void live_bus_port_t::set_points(const points_t& _items, const points_t& _scenarios) {
    if (bus_items == _items && bus_scenarios == _scenarios) {
        return;
    }
    bus_items = _items;
    bus_scenarios = _scenarios;
    Q_EMIT points_changed();
}

QString live_bus_port_t::value(const QString& _id_item) const {
    const auto* const item =
        database ? database->getRealtime()->getItems()->list(_id_item) : nullptr;
    return item == nullptr ? QString() : item->getValue();
}

void live_bus_port_t::report_value(const QString& _id_item, const QString& _value) {
    realtime->write_item(_id_item, _value);
}

void live_bus_port_t::report_execution(const QString& _id_scenario, bool _execution) {
    realtime->write_scenario(_id_scenario, _execution);
}

void live_bus_port_t::report_link(bool _online) {
    if (is_online != _online) {
        is_online = _online;
        Q_EMIT link_changed(is_online);
    }
}

void live_bus_port_t::report_telegram(const bus::bus_telegram_t& _telegram) {
    Q_EMIT telegram_passed(_telegram);
}

bus::bus_counters_t live_bus_port_t::counters() {
    Q_EMIT counters_asked();
    return counted;
}

}  // namespace database::live
