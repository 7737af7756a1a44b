#include "loader/loaded_driver_t.h"

#include <utility>

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

}  // namespace loader
