#pragma once

#include "house_device_t.h"
#include "house_points_t.h"

namespace torlan {

/// The drive of a blind: travels to a position, up and down, and stops. Items that it has not got
/// are empty ids.
class drive_t : public house_device_t {
 public:
    struct items_t {
        QString position;
        QString move;
        QString stop;
    };
    drive_t(house_points_t* _points, const items_t& _items);

    void write(const QString& _id, double _value) override;
    void pass(int _pass) override;

 private:
    house_points_t* const points;
    const items_t items;
    double target;
};

}  // namespace torlan
