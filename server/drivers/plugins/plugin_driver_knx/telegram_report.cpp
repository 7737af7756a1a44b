#include "drivers/plugins/plugin_driver_knx/telegram_report.h"

namespace knx {

namespace {

bus::bus_telegram_t::kind_t kind_of(command_t _command) {
    using kind_t = bus::bus_telegram_t::kind_t;
    switch (_command) {
        case command_t::read:
            return kind_t::read;
        case command_t::response:
            return kind_t::response;
        default:
            return kind_t::write;
    }
}

}  // namespace

bus::bus_telegram_t telegram_report(const bus_map_t& _map, const telegram_t& _telegram) {
    bus::bus_telegram_t report;
    report.kind = kind_of(_telegram.command);
    report.source = _telegram.source == 0 ? QString() : device_text(_telegram.source);
    report.address = _telegram.destination.text();
    report.value = QString::fromLatin1(_telegram.data.toHex());
    bool is_open = _telegram.command != command_t::read;
    for (const bus_point_t* const point : _map.points_at(_telegram.destination)) {
        report.ids.append(point->id);
        report.dpt = report.dpt.isEmpty() ? point->dpt : report.dpt;
        if (!is_open) {
            continue;
        }
        const auto value = point->decode(_telegram);
        if (value.is_ok()) {
            report.dpt = point->dpt;
            report.value = value.value;
            is_open = false;
        }
    }
    return report;
}

}  // namespace knx
