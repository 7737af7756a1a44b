#pragma once

#include "bus/bus_telegram_t.h"
#include "drivers/plugins/plugin_driver_knx/bus_map_t.h"

namespace knx {

/// A telegram as people read it. The type is that of the first item that can read the value; where
/// none can, the value is shown by its bytes. Pure.
bus::bus_telegram_t telegram_report(const bus_map_t& _map, const telegram_t& _telegram);

}  // namespace knx
