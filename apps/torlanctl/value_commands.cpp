#include "commands.h"
#include "opened_store.h"

namespace torlan {

namespace {

outcome_t set_item(const call_t& _call) {
    return edit(_call, [&](database::store::store_editor_t& _editor) {
        return _editor.set_item(_call["ITEM"], _call["VALUE"]);
    });
}

}  // namespace

commands_t value_commands() {
    return {
        {.name = "set",
         .arguments = "ITEM VALUE",
         .help = "report any value of any item, as the bus would: sensors, too",
         .run = set_item,
         .on = works_on_t::changed_installation,
         .examples = {QStringLiteral("set i-kitchen-temperature 22.5"),
                      QStringLiteral("set i-outside -5")}},
    };
}

}  // namespace torlan
