#pragma once

#include "line/call_t.h"
#include "line/outcome_t.h"

namespace torlan {

/// explain USER ELEMENT [--json]
outcome_t explain(const call_t& _call);

}  // namespace torlan
