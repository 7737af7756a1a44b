#pragma once

#include <QString>

#include "accounts/broker_event_t.h"

namespace accounts {

/// Whether somebody was not let in, or not allowed something. Pure, as what follows.
bool is_refusal(const broker_event_t& _event);

/// One line for people; what clients have chosen is quoted.
QString event_text(const broker_event_t& _event);

}  // namespace accounts
