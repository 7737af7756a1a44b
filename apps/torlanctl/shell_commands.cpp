#include <algorithm>

#include "commands.h"
#include "database/permission.h"
#include "knx/data_point_types.h"
#include "line/completion.h"
#include "line/man_page.h"
#include "opened_store.h"
#include "output_t.h"
#include "program/version.h"
#include "store/stored_names.h"

/// What shells and packagers ask for.
namespace torlan {

namespace {

using database::store::kind_t;

/// A shell shows no more of them.
constexpr int most_names = 500;

QStringList types() {
    QStringList ids;
    for (const knx::data_point_type_t& type : knx::data_point_types()) {
        ids.append(type.id());
    }
    return ids;
}

QStringList names_of(const wanted_t& _wanted) {
    static const QHash<QString, kind_t> kinds{{QStringLiteral("USER"), kind_t::user},
                                              {QStringLiteral("ELEMENT"), kind_t::element},
                                              {QStringLiteral("ITEM"), kind_t::item},
                                              {QStringLiteral("SCENARIO"), kind_t::scenario},
                                              {QStringLiteral("THERMOSTAT"), kind_t::thermostat}};
    const auto kind = kinds.constFind(_wanted.kind);
    if (kind != kinds.constEnd()) {
        call_t call;
        call.data = _wanted.data;
        return database::store::stored_names(database_file(call), *kind, _wanted.begun, most_names);
    }
    if (_wanted.kind == QLatin1String("PERMISSION")) {
        return {database::permission::read, database::permission::write,
                database::permission::readwrite, database::permission::deny};
    }
    return _wanted.kind == QLatin1String("TYPE") ? types() : _wanted.words;
}

outcome_t complete(const call_t& _call) {
    const wanted_t wanted = completion_of(_call.all("WORD"), commands());
    output_t output;
    if (wanted.kind == QLatin1String("FILE")) {
        output.line(QStringLiteral(":files"));
    } else if (wanted.kind == QLatin1String("DIR")) {
        output.line(QStringLiteral(":folders"));
    }
    for (const QString& name : names_of(wanted)) {
        if (name.startsWith(wanted.begun)) {
            output.line(name);
        }
    }
    return output.finish();
}

outcome_t print_completion(const call_t&) {
    output_t output;
    output.add(bash_completion().toUtf8());
    return output.finish();
}

outcome_t print_man_page(const call_t&) {
    output_t output;
    output.add(man_page(commands(), version()).toUtf8());
    return output.finish();
}

}  // namespace

commands_t shell_commands() {
    return {
        {.name = "completion",
         .arguments = "",
         .help = "print the completion for bash",
         .run = print_completion,
         .on = works_on_t::nothing,
         .examples = {QStringLiteral(
             "completion > ~/.local/share/bash-completion/completions/torlanctl")}},
        {.name = "man-page",
         .arguments = "",
         .help = "print the manual page",
         .run = print_man_page,
         .on = works_on_t::nothing,
         .is_hidden = true},
        {.name = "complete",
         .arguments = "WORD...",
         .help = "print what may stand for the last word",
         .run = complete,
         .on = works_on_t::nothing,
         .is_hidden = true},
    };
}

}  // namespace torlan
