#include "socket_t.h"

namespace torlan {

namespace {

constexpr double usual_power = 40;  // W

double or_usual(double _power) {
    return _power > 0 ? _power : usual_power;
}

}  // namespace

socket_t::socket_t(house_points_t* _points, const QString& _execute, const QString& _power)
    : points(_points), execute(_execute), power(_power), drawn(or_usual(_points->number(_power))) {}

void socket_t::write(const QString&, double _value) {
    points->set(execute, _value);
}

void socket_t::pass(int) {
    points->set(power, points->number(execute) != 0 ? drawn : 0);
}

}  // namespace torlan
