#pragma once

#include <memory>

#include "drivers/driver/capability/plugin_driver_IBus.h"
#include "drivers/driver/capability/with_capabilities_t.h"
#include "drivers/driver/plugin_driver_interface_t.h"

namespace knx {
class knx_bus_t;
}

namespace interfaces {

/// Root object of the plugin: makes the bus while it is started, when the host has one for it.
class plugin_driver_knx_t : public plugin_driver_interface_t,
                            public WithCapabilities<plugin_driver_knx_t, IBus> {
    Q_OBJECT
    Q_INTERFACES(interfaces::plugin_driver_interface_t)

 public:
    plugin_driver_knx_t();
    ~plugin_driver_knx_t() override;

    void* getCapability(const char* _name) override;
    /// Nothing in this driver.
    void init_event_to_dispatcher(bool _enable, QObject* _object) override;
    bool finalize_database_initialization() override;
    bool init_bus(bus::bus_port_t* _port) override;
    void start(bool _init) override;

 private:
    QPointer<bus::bus_port_t> port;
    std::unique_ptr<knx::knx_bus_t> bus;
};

}  // namespace interfaces
