#include "thermostat_t.h"

#include <algorithm>
#include <cmath>

namespace torlan {

namespace {

constexpr int slowness = 25;               // passes between two looks at the thermometer
constexpr double opening_per_degree = 50;  // %
constexpr double warming = 0.2;            // degrees a look, valve open
constexpr double cooling = 0.05;
constexpr double keeping = 100 * cooling / warming;  // %, at which it stays as warm as it is

double tenths(double _value) {
    return std::round(_value * 10) / 10;
}

}  // namespace

thermostat_t::thermostat_t(house_points_t* _points, const items_t& _items)
    : points(_points), items(_items), temperature(_points->number(_items.actual)) {}

void thermostat_t::write(const QString& _id, double _value) {
    points->set(_id, _value);
}

void thermostat_t::pass(int _pass) {
    if (_pass % slowness != 0) {
        return;
    }
    const double missing = points->number(items.setpoint) - temperature;
    const double opening =
        std::clamp(std::round(keeping + missing * opening_per_degree), 0.0, 100.0);
    temperature += warming * opening / 100 - cooling;
    points->set(items.valve, opening);
    points->set(items.actual, tenths(temperature));
}

}  // namespace torlan
