#pragma once

#include "accounts/broker_event_t.h"
#include "audit/entry_t.h"

namespace audit {

/// What happened at the broker's door. Pure.
entry_t broker_entry(const accounts::broker_event_t& _event);

}  // namespace audit
