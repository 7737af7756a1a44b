#pragma once

#include "database/realtime/objects/rt_object_scenary_t.h"
#include "database/table_t.h"

namespace database::realtime::dbs {

class rt_scenary_t : public table_t<objects::rt_object_scenary_t> {};

}  // namespace database::realtime::dbs
