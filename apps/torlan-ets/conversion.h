#pragma once

#include "base/result_t.h"
#include "options_t.h"

namespace torlan {

/// Reads the project and writes what was asked for, all of it or nothing.
base::result_t convert(const options_t& _options);

}  // namespace torlan
