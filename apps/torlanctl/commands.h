#pragma once

#include "line/command_t.h"

namespace torlan {

/// Every command, in the order in which the help lists them.
const commands_t& commands();

// Those of each file.
commands_t document_commands();
commands_t backup_commands();
commands_t user_commands();
commands_t grant_commands();
commands_t thing_commands();
commands_t value_commands();
commands_t api_commands();
commands_t watch_commands();
commands_t dpt_commands();
commands_t audit_commands();
commands_t live_commands();
commands_t doctor_commands();
commands_t shell_commands();

}  // namespace torlan
