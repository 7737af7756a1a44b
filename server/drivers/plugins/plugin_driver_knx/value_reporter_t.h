#pragma once

#include "bus/bus_port_t.h"
#include "drivers/plugins/plugin_driver_knx/bus_map_t.h"
#include "drivers/plugins/plugin_driver_knx/told_once_t.h"

namespace knx {

/// Gives the value of a telegram, ours or another's, to every item and scenario that listens.
class value_reporter_t {
 public:
    value_reporter_t(bus::bus_port_t* _port, bus::bus_counters_t* _counters)
        : port(_port), counters(_counters) {}

    /// A question sets nothing. False: nobody listens to the address.
    bool report(const bus_map_t& _map, const telegram_t& _telegram);

 private:
    void report_to(const bus_point_t& _point, const telegram_t& _telegram);

    bus::bus_port_t* const port;
    bus::bus_counters_t* const counters;
    told_once_t told;
};

}  // namespace knx
