#include "bus/bus_port_t.h"

namespace bus {

bus_port_t::bus_port_t(QObject* _parent) : QObject(_parent) {}

bus_port_t::~bus_port_t() = default;

}  // namespace bus
