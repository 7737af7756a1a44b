#include "database/persistent/objects/psoe_thermo_logic.h"

#include <utility>

namespace database::persistent::objects {

psoe_thermo_logic::psoe_thermo_logic(ps_element_data_t _data, QString _thermo_id, QObject* _parent)
    : ps_object_element_t(std::move(_data), _parent), thermo_id(std::move(_thermo_id)) {}

psoe_thermo_logic::~psoe_thermo_logic() = default;

std::unique_ptr<ps_object_element_t> psoe_thermo_logic::clone() const {
    return std::make_unique<psoe_thermo_logic>(data, thermo_id);
}

}  // namespace database::persistent::objects
