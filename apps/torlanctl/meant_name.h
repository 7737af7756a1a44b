#pragma once

#include "line/call_t.h"

namespace torlan {

/// A refusal of something that is not there, with what was perhaps meant: "There is no user alcie.
/// Did you mean alice?" Other refusals stay as they are.
QString with_meant_name(const call_t& _call, const QString& _refusal);

}  // namespace torlan
