#include "drivers/plugins/plugin_driver_knx/plugin_driver_knx_t.h"

#include "drivers/plugins/plugin_driver_knx/knx_bus_t.h"

namespace interfaces {

plugin_driver_knx_t::plugin_driver_knx_t()
    : plugin_driver_interface_t(QStringLiteral("plugin_driver_knx"), QStringLiteral("0.1"), true) {}

plugin_driver_knx_t::~plugin_driver_knx_t() = default;

void* plugin_driver_knx_t::getCapability(const char* _name) {
    return dispatchCapability(_name);
}

void plugin_driver_knx_t::init_event_to_dispatcher(bool, QObject*) {}

bool plugin_driver_knx_t::finalize_database_initialization() {
    return true;
}

bool plugin_driver_knx_t::init_bus(bus::bus_port_t* _port) {
    port = _port;
    return true;
}

void plugin_driver_knx_t::start(bool _init) {
    if (!_init) {
        bus.reset();
    } else if (port && !bus) {
        bus = std::make_unique<knx::knx_bus_t>(port);
    }
}

}  // namespace interfaces
