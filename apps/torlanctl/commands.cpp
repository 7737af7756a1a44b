#include "commands.h"

namespace torlan {

const commands_t& commands() {
    static const commands_t table =
        document_commands() + backup_commands() + user_commands() + grant_commands() +
        thing_commands() + value_commands() + api_commands() + watch_commands() + dpt_commands() +
        audit_commands() + live_commands() + doctor_commands() + shell_commands();
    return table;
}

}  // namespace torlan
