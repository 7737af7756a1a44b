#pragma once

#include "house_device_t.h"
#include "house_points_t.h"

namespace torlan {

/// A switched socket with something plugged in that draws power.
class socket_t : public house_device_t {
 public:
    socket_t(house_points_t* _points, const QString& _execute, const QString& _power);

    void write(const QString& _id, double _value) override;
    void pass(int _pass) override;

 private:
    house_points_t* const points;
    const QString execute;
    const QString power;
    const double drawn;  ///< W, when it is on
};

}  // namespace torlan
