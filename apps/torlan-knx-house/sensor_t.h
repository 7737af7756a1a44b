#pragma once

#include "house_device_t.h"
#include "house_points_t.h"

namespace torlan {

/// A sensor whose value wanders a little around what it was.
class sensor_t : public house_device_t {
 public:
    /// @param _first its first change comes at this pass
    sensor_t(house_points_t* _points, const QString& _item, int _first);

    /// Nobody can: it only reports.
    void write(const QString& _id, double _value) override;
    void pass(int _pass) override;

 private:
    house_points_t* const points;
    const QString item;
    const int first;
    const double middle;
};

}  // namespace torlan
