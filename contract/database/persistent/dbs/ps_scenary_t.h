#pragma once

#include "database/persistent/objects/ps_object_scenary_t.h"
#include "database/table_t.h"

namespace database::persistent::dbs {

class ps_scenary_t : public table_t<objects::ps_object_scenary_t> {};

}  // namespace database::persistent::dbs
