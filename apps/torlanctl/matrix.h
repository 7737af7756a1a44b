#pragma once

#include "line/call_t.h"
#include "line/outcome_t.h"

namespace torlan {

/// matrix [USER...] [--json]
outcome_t show_matrix(const call_t& _call);

}  // namespace torlan
