#pragma once

#include "line/call_t.h"
#include "line/outcome_t.h"

namespace torlan {

/// Writes functions of one element as an API user; with --confirm until the values are there.
outcome_t put_functions(const call_t& _call);

/// A wrong call where a text is no element's identifier.
outcome_t check_element(const QString& _element);

}  // namespace torlan
