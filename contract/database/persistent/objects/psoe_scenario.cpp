#include "database/persistent/objects/psoe_scenario.h"

#include <utility>

namespace database::persistent::objects {

psoe_scenario::psoe_scenario(ps_element_data_t _data, QString _scenario_id, QObject* _parent)
    : ps_object_element_t(std::move(_data), _parent), scenario_id(std::move(_scenario_id)) {}

psoe_scenario::~psoe_scenario() = default;

std::unique_ptr<ps_object_element_t> psoe_scenario::clone() const {
    return std::make_unique<psoe_scenario>(data, scenario_id);
}

}  // namespace database::persistent::objects
