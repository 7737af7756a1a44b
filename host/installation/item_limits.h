#pragma once

#include <QString>

#include "installation/item_limits_t.h"

namespace database::installation {

/// Why limits are none, such as "min must not be above max"; empty: they are.
QString limits_error(const item_limits_t& _limits);

/// Why an item with these limits does not take a value that a client asks for, such as "it is above
/// 100"; empty: it takes it. A number is what a value is where there is a range or a step.
QString refusal(const item_limits_t& _limits, const QString& _value);

}  // namespace database::installation
