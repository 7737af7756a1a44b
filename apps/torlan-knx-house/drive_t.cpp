#include "drive_t.h"

#include <algorithm>

namespace torlan {

namespace {

constexpr double step = 5;  // %

}  // namespace

drive_t::drive_t(house_points_t* _points, const items_t& _items)
    : points(_points), items(_items), target(_points->number(_items.position)) {}

void drive_t::write(const QString& _id, double _value) {
    if (_id == items.move) {
        target = _value != 0 ? 100 : 0;  // 1 is down, which is closed
    } else if (_id == items.stop) {
        target = points->number(items.position);
    } else {
        target = _value;
    }
}

void drive_t::pass(int) {
    const double now = points->number(items.position);
    if (std::abs(now - target) >= 0.5) {
        points->set(items.position, now + std::clamp(target - now, -step, step));
    }
}

}  // namespace torlan
