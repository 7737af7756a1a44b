#pragma once

#include "line/call_t.h"
#include "line/outcome_t.h"

namespace torlan {

/// Asks a person at a terminal whether it is to be done; without one, and with --yes, it is.
/// @param _what such as "This removes the user alice with 3 grants."
base::result_t confirm(const call_t& _call, const QString& _what);

}  // namespace torlan
