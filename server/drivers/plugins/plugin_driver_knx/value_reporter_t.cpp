#include "drivers/plugins/plugin_driver_knx/value_reporter_t.h"

#include "logs/log_line.h"

namespace knx {

namespace {

constexpr const char* source = "server/drivers/plugins/plugin_driver_knx/value_reporter_t";

}  // namespace

bool value_reporter_t::report(const bus_map_t& _map, const telegram_t& _telegram) {
    const QList<const bus_point_t*> points = _map.listeners(_telegram.destination);
    for (const bus_point_t* point : points) {
        if (_telegram.command != command_t::read) {
            report_to(*point, _telegram);
        }
    }
    return !points.isEmpty();
}

void value_reporter_t::report_to(const bus_point_t& _point, const telegram_t& _telegram) {
    const auto value = _point.decode(_telegram);
    if (!value.is_ok()) {
        ++counters->undecodable;
        if (told.is_first(_telegram.destination.text() + QLatin1Char(' ') + _point.id)) {
            utility::log_line(QStringLiteral("Telegram of device %1 left out. %2")
                                  .arg(device_text(_telegram.source), value.error),
                              3, "report_to", source, __LINE__);
        }
        return;
    }
    if (!_point.is_scenario()) {
        port->report_value(_point.id, value.value);
        return;
    }
    // Above 64: devices are to learn the scene, none is played.
    const int scene = value.value.toInt();
    if (scene <= 64) {
        port->report_execution(_point.id, scene == _point.scene);
    }
}

}  // namespace knx
