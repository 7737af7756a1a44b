#pragma once

#include "database/base/table_t.h"
#include "database/realtime/objects/rt_object_scenary_t.h"

namespace database::realtime::dbs {

class rt_scenary_t : public base::table_t<objects::rt_object_scenary_t> {};

}  // namespace database::realtime::dbs
