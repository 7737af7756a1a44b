#include "dimmer_t.h"

#include <algorithm>

namespace torlan {

namespace {

constexpr double step = 10;  // %

}  // namespace

dimmer_t::dimmer_t(house_points_t* _points, const QString& _execute, const QString& _level)
    : points(_points),
      execute(_execute),
      level(_level),
      target(_points->number(_level)),
      last_level(target > 0 ? target : 100) {}

void dimmer_t::write(const QString& _id, double _value) {
    const bool is_level = _id == level;
    target = is_level ? _value : (_value != 0 ? last_level : 0);
    if (target > 0) {
        last_level = target;
    }
}

void dimmer_t::pass(int) {
    const double now = points->number(level);
    // The level as the bus can say it may lie half a step beside the target.
    if (std::abs(now - target) < 0.5) {
        points->set(execute, target > 0 ? 1 : 0);
        return;
    }
    const double next = now + std::clamp(target - now, -step, step);
    points->set(level, next);
    points->set(execute, next > 0 ? 1 : 0);
}

}  // namespace torlan
