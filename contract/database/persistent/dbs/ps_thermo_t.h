#pragma once

#include "database/persistent/objects/ps_object_thermostat_t.h"
#include "database/table_t.h"

namespace database::persistent::dbs {

class ps_thermo_t : public table_t<objects::ps_object_thermostat_t> {};

}  // namespace database::persistent::dbs
