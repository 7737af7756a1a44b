#include "sensor_t.h"

#include <iterator>

namespace torlan {

namespace {

constexpr int slowness = 150;  // passes between two changes
constexpr double way[] = {0.1, 0.2, 0.1, 0, -0.1, -0.2, -0.1, 0};

}  // namespace

sensor_t::sensor_t(house_points_t* _points, const QString& _item, int _first)
    : points(_points), item(_item), first(_first % slowness), middle(_points->number(_item)) {}

void sensor_t::write(const QString&, double) {}

void sensor_t::pass(int _pass) {
    if (_pass % slowness == first) {
        points->set(item, middle + way[std::size_t(_pass / slowness) % std::size(way)]);
    }
}

}  // namespace torlan
