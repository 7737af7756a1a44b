#pragma once

#include "database/base/table_t.h"
#include "database/persistent/objects/ps_object_thermostat_t.h"

namespace database::persistent::dbs {

class ps_thermo_t : public base::table_t<objects::ps_object_thermostat_t> {};

}  // namespace database::persistent::dbs
