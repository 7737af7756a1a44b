#pragma once

#include "database/realtime/objects/rt_object_item_t.h"
#include "database/table_t.h"

namespace database::realtime::dbs {

class rt_items_t : public table_t<objects::rt_object_item_t> {};

}  // namespace database::realtime::dbs
