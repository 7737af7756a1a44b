#pragma once

#include "line/command_t.h"

/// A table of commands that do nothing.
inline const torlan::commands_t& small_table() {
    using namespace torlan;
    static const auto nothing = [](const call_t&) { return outcome_t(); };
    static const commands_t table{
        {.name = "set", .arguments = "ITEM VALUE", .help = "set", .run = nothing},
        {.name = "list",
         .arguments = "[KIND]",
         .help = "list",
         .run = nothing,
         .options = {json_option}},
        {.name = "user add",
         .arguments = "NAME",
         .help = "add",
         .run = nothing,
         .options = {{"file", "FILE", "a file"}}},
        {.name = "user remove", .arguments = "USER", .help = "remove", .run = nothing},
        {.name = "element set",
         .arguments = "ELEMENT FUNCTION=ITEM...",
         .help = "change",
         .run = nothing,
         .options = {{"writable", "yes|no", "may"}, {"without", "FUNCTION", "less"}}},
        {.name = "grant",
         .arguments = "USER ELEMENT|--all|--type PERMISSION",
         .help = "grant",
         .run = nothing,
         .options = {{"all", "", "all"}, {"type", "N", "type"}}},
        {.name = "secret", .arguments = "", .help = "hidden", .run = nothing, .is_hidden = true},
    };
    return table;
}
