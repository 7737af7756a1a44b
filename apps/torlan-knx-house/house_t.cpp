#include "house_t.h"

#include "dimmer_t.h"
#include "drive_t.h"
#include "sensor_t.h"
#include "socket_t.h"
#include "thermostat_t.h"

namespace torlan {

using database::installation::element_t;
using database::installation::installation_t;
using knx::telegram_t;

namespace {

const QString execute = QStringLiteral("execute");

/// Passes between the first changes of two sensors, so that they do not talk at once.
constexpr int apart = 7;

}  // namespace

house_t::house_t(const installation_t& _home) : points(_home) {
    add_thermostats(_home);
    for (const element_t& element : _home.elements) {
        add_element(element);
    }
}

void house_t::add_thermostats(const installation_t& _home) {
    for (const auto& thermostat : _home.thermostats) {
        const thermostat_t::items_t items{thermostat.ids.value(QStringLiteral("setpoint")),
                                          thermostat.id_actual,
                                          thermostat.ids.value(QStringLiteral("valve"))};
        if (points.has(items.setpoint) && points.has(items.actual)) {
            add(std::make_unique<thermostat_t>(&points, items),
                {items.setpoint, items.actual, items.valve});
        }
    }
}

void house_t::add_element(const element_t& _element) {
    const auto item = [&](const char* _function) {
        const QString id = _element.functions.value(QLatin1String(_function));
        return is_free(id) ? id : QString();
    };
    const QString switches = _element.functions.value(execute);
    if (const QString level = item("level"); !level.isEmpty()) {
        add(std::make_unique<dimmer_t>(&points, switches, level), {switches, level});
    } else if (const QString position = item("position"); !position.isEmpty()) {
        const drive_t::items_t items{position, item("move"), item("stop")};
        add(std::make_unique<drive_t>(&points, items), {position, items.move, items.stop});
    } else if (const QString power = item("power"); !power.isEmpty()) {
        add(std::make_unique<socket_t>(&points, switches, power), {switches, power});
    } else if (switched.isEmpty() && points.has(switches)) {
        switched = switches;
    }
    for (const char* function : {"temperature", "humidity"}) {
        if (const QString sensor = item(function); !sensor.isEmpty()) {
            add(std::make_unique<sensor_t>(&points, sensor, int(devices.size()) * apart), {sensor});
        }
    }
}

bool house_t::is_free(const QString& _item) const {
    return points.has(_item) && !owners.contains(_item);
}

void house_t::add(std::unique_ptr<house_device_t> _device, const QStringList& _items) {
    for (const QString& item : _items) {
        owners.insert(item, _device.get());
    }
    devices.push_back(std::move(_device));
}

QList<telegram_t> house_t::take(const telegram_t& _telegram) {
    if (_telegram.command == knx::command_t::read) {
        const auto answer = points.answer(_telegram.destination);
        return answer ? QList<telegram_t>{*answer} : QList<telegram_t>();
    }
    if (_telegram.command == knx::command_t::write) {
        for (const QString& item : points.written_at(_telegram.destination)) {
            take_write(item, _telegram.data);
        }
    }
    return points.take_reports();
}

void house_t::take_write(const QString& _item, const QByteArray& _data) {
    house_device_t* const owner = owners.value(_item);
    if (owner == nullptr) {
        points.accept(_item, _data);
    } else if (const auto value = points.number_in(_item, _data)) {
        owner->write(_item, *value);
    }
}

QList<telegram_t> house_t::pass() {
    ++passes;
    for (const auto& device : devices) {
        device->pass(passes);
    }
    const QList<telegram_t> reports = points.take_reports();
    return passes % switch_pause == 0 ? reports + use_switch() : reports;
}

QList<telegram_t> house_t::use_switch() {
    const auto command = points.command(switched, points.number(switched) != 0 ? 0 : 1);
    return command ? QList<telegram_t>{*command} + take(*command) : QList<telegram_t>();
}

}  // namespace torlan
