#pragma once

#include "database/persistent/objects/ps_object_user_t.h"

namespace database::persistent::objects {

/// A user of the MQTT API.
class ps_object_user_api_t : public ps_object_user_t {
 public:
    using ps_object_user_t::ps_object_user_t;
};

}  // namespace database::persistent::objects
