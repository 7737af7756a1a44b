#pragma once

#include "bus/bus_port_t.h"

namespace interfaces {

/// Capability of drivers that move values between the server and a bus.
///
/// The order of the virtual operations is binary contract with the host: keep it.
class IBus {
 public:
    static constexpr const char* capability_name = "IBus";

    IBus() = default;
    Q_DISABLE_COPY_MOVE(IBus)
    virtual ~IBus() = default;

    /// Takes the port, after init_database() and before start(true); it is not owned and outlives
    /// start(false). Not called where the server has no bus. False: the driver cannot use it; it
    /// has logged why.
    virtual bool init_bus(bus::bus_port_t* _port) = 0;
};

}  // namespace interfaces
