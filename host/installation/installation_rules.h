#pragma once

#include "installation/installation_t.h"
#include "installation/problems_t.h"

namespace database::installation {

/// Checks what a schema cannot: names, references, user names that stand twice. Passwords are
/// not looked at.
problems_t check_rules(const installation_t& _installation);

}  // namespace database::installation
