#include "loader/loaded_driver_t.h"

#include <utility>

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

bool loaded_driver_t::init(database::database_t* _database,
                           comunication::protoserver_t* _endpoint) const {
    interfaces::plugin_driver_interface_t* const object = get_driver();
    if (object == nullptr || !object->init_database(_database)) {
        return false;
    }
    auto* const comunication = static_cast<interfaces::IComunication*>(
        object->getCapability(interfaces::IComunication::capability_name));
    return comunication == nullptr || comunication->init_comunication(_endpoint);
}

}  // namespace loader
