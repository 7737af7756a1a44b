#pragma once

#include "house_device_t.h"
#include "house_points_t.h"

namespace torlan {

/// A thermostat and its room: the valve opens as far as warmth is missing, and the temperature
/// follows. Items that it has not got are empty ids.
class thermostat_t : public house_device_t {
 public:
    struct items_t {
        QString setpoint;
        QString actual;
        QString valve;
    };
    thermostat_t(house_points_t* _points, const items_t& _items);

    void write(const QString& _id, double _value) override;
    void pass(int _pass) override;

 private:
    house_points_t* const points;
    const items_t items;
    double temperature;  ///< more of it than the bus is told
};

}  // namespace torlan
