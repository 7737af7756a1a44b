#pragma once

#include "system/rights_matrix/outcome_t.h"
#include "system/rights_matrix/path_t.h"
#include "system/rights_matrix/right_t.h"

namespace matrix {

/// What is to come of an attempt: the only place that knows. Pure, and nothing of the product.
/// @p _hidden: an element of a type that the API does not show
/// @p _version of MQTT as CONNECT writes it: 3 is 3.1, 4 is 3.1.1
outcome_t expected(right_t _right, path_t _path, bool _hidden, int _version);

}  // namespace matrix
