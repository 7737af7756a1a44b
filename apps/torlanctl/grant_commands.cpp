#include "commands.h"
#include "database/name_rules.h"
#include "database/permission.h"
#include "explain.h"
#include "matrix.h"
#include "opened_store.h"
#include "option_values.h"

namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using database::quoted;
using database::store::store_editor_t;

const option_t all_option{"all", "", "every element that there is now"};
const option_t type_option{"type", "N", "every element of this type that there is now"};

/// The type that is asked for; nothing: of all types.
result_of_t<std::optional<int>> type_of(const call_t& _call) {
    if (!_call.has("type")) {
        return std::optional<int>();
    }
    int type = 0;
    const result_t taken = take_whole(_call, "type", &type);
    if (!taken.is_ok()) {
        return taken;
    }
    return std::optional(type);
}

outcome_t give(const call_t& _call, int _bits) {
    const auto type = type_of(_call);
    if (!type.is_ok()) {
        return {status_usage, type.error};
    }
    return edit(_call, [&](store_editor_t& _editor) -> result_t {
        return _call.has("ELEMENT")
                   ? _editor.grant(_call["USER"], _call["ELEMENT"], _bits)
                   : result_t(_editor.grant_many(_call["USER"], type.value, _bits));
    });
}

outcome_t grant(const call_t& _call) {
    const QString word = _call["PERMISSION"];
    const std::optional<int> bits = database::permission::bits(word);
    return bits ? give(_call, *bits)
                : outcome_t(result_t::failed(
                      QStringLiteral("%1 is no permission: read, write, readwrite or deny.")
                          .arg(quoted(word))));
}

outcome_t revoke(const call_t& _call) {
    return give(_call, 0);
}

}  // namespace

commands_t grant_commands() {
    constexpr works_on_t changes = works_on_t::changed_installation;
    return {
        {.name = "grant",
         .arguments = "USER ELEMENT|--all|--type PERMISSION",
         .help = "let USER read, write or readwrite ELEMENT, or deny it",
         .run = grant,
         .on = changes,
         .options = {all_option, type_option},
         .examples = {QStringLiteral("grant bob e-kitchen-ceiling read"),
                      QStringLiteral("grant bob --type 3 readwrite"),
                      QStringLiteral("grant bob --all read")}},
        {.name = "revoke",
         .arguments = "USER ELEMENT|--all|--type",
         .help = "take the grant back, as grant ... deny does",
         .run = revoke,
         .on = changes,
         .options = {all_option, type_option},
         .examples = {QStringLiteral("revoke bob e-kitchen-ceiling"),
                      QStringLiteral("revoke bob --all")}},
        {.name = "matrix",
         .arguments = "USER...",
         .help = "show who may do what: r reads, w writes",
         .run = show_matrix,
         .options = {json_option},
         .examples = {QStringLiteral("matrix"), QStringLiteral("matrix alice bob"),
                      QStringLiteral("matrix --json")},
         .more = "A line for each element, a column for each user; of many users one table below "
                 "the other."},
        {.name = "explain",
         .arguments = "USER ELEMENT",
         .help = "tell what USER may do with ELEMENT, where, and why a request is refused",
         .run = explain,
         .options = {json_option},
         .examples = {QStringLiteral("explain bob e-kitchen-ceiling")}},
    };
}

}  // namespace torlan
