#pragma once

#include "house_device_t.h"
#include "house_points_t.h"

namespace torlan {

/// A dimmed lamp: goes to a level by steps, is on above zero, and comes back to the level that it
/// had.
class dimmer_t : public house_device_t {
 public:
    dimmer_t(house_points_t* _points, const QString& _execute, const QString& _level);

    void write(const QString& _id, double _value) override;
    void pass(int _pass) override;

 private:
    house_points_t* const points;
    const QString execute;
    const QString level;
    double target;
    double last_level;  ///< when it was on
};

}  // namespace torlan
