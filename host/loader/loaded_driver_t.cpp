#include "loader/loaded_driver_t.h"

#include <utility>

#include "drivers/driver/capability/plugin_driver_IBus.h"
#include "drivers/driver/capability/plugin_driver_IComunication.h"

namespace loader {

loaded_driver_t::loaded_driver_t(QString _file, driver_metadata_t _metadata,
                                 interfaces::plugin_driver_interface_t* _driver)
    : file(std::move(_file)), metadata(std::move(_metadata)), driver(_driver) {}

loaded_driver_t::loaded_driver_t(loaded_driver_t&& _other) noexcept
    : file(std::move(_other.file)),
      metadata(std::move(_other.metadata)),
      driver(std::exchange(_other.driver, nullptr)) {}

loaded_driver_t::~loaded_driver_t() {
    delete driver.data();
}

interfaces::plugin_driver_interface_t* loaded_driver_t::get_driver() const {
    return static_cast<interfaces::plugin_driver_interface_t*>(driver.data());
}

namespace {

template <class capability_t>
capability_t* capability_of(interfaces::plugin_driver_interface_t* _driver) {
    return static_cast<capability_t*>(_driver->getCapability(capability_t::capability_name));
}

}  // namespace

bool loaded_driver_t::init(database::database_t* _database, comunication::protoserver_t* _endpoint,
                           bus::bus_port_t* _bus) const {
    interfaces::plugin_driver_interface_t* const object = get_driver();
    if (object == nullptr || !object->init_database(_database)) {
        return false;
    }
    auto* const comunication = capability_of<interfaces::IComunication>(object);
    if (comunication != nullptr && !comunication->init_comunication(_endpoint)) {
        return false;
    }
    auto* const bus_user = _bus == nullptr ? nullptr : capability_of<interfaces::IBus>(object);
    return bus_user == nullptr || bus_user->init_bus(_bus);
}

}  // namespace loader
