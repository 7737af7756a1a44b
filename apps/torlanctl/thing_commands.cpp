#include <QJsonArray>

#include "commands.h"
#include "confirmation.h"
#include "opened_store.h"
#include "output_t.h"
#include "store/overview_t.h"
#include "store/store_reader_t.h"
#include "store/thing_editor_t.h"
#include "thing_edits.h"
#include "thing_text.h"

/// Elements, items, scenarios and thermostats: the same six commands for each.
namespace torlan {

namespace {

using base::result_t;
using database::installation::installation_t;
using database::store::kind_t;
using database::store::overview_t;
using database::store::sqlite_store_t;
using database::store::store_reader_t;
using database::store::thing_editor_t;

/// The identifier of the thing, whose argument is named after its kind.
QString id_in(const call_t& _call, kind_t _kind) {
    return _call[database::store::word_of(_kind).toUpper().toLatin1().constData()];
}

template <typename use_t>
result_t with_things(const call_t& _call, use_t _use) {
    sqlite_store_t store;
    const result_t opened = open_store(&store, _call);
    if (!opened.is_ok()) {
        return opened;
    }
    thing_editor_t editor(store.connection());
    const result_t used = _use(store, editor);
    return used.is_ok() ? store.connection().check_place() : used;
}

result_t show_pages(const call_t& _call, kind_t _kind, sqlite_store_t* _store, output_t* _output) {
    overview_t overview(_store->connection());
    for (QString after;;) {
        const auto page = overview.names(_kind, after);
        if (!page.is_ok() || page.value.isEmpty() || !_output->is_read()) {
            return page;
        }
        installation_t things;
        store_reader_t reader(_store->connection());
        const result_t read = reader.read_things(_kind, page.value, &things);
        if (!read.is_ok()) {
            return read;
        }
        for (const QString& id : page.value) {
            if (_call.has("json")) {
                _output->line(thing_json(_kind, id, things));
            } else {
                _output->line(thing_line(_kind, id, things));
            }
        }
        after = page.value.constLast();
    }
}

template <kind_t kind>
outcome_t list_things(const call_t& _call) {
    output_t output;
    const result_t listed = with_things(_call, [&](sqlite_store_t& _store, thing_editor_t&) {
        return show_pages(_call, kind, &_store, &output);
    });
    const result_t written = output.finish();
    return listed.is_ok() ? written : listed;
}

template <kind_t kind>
outcome_t show_thing(const call_t& _call) {
    const QString id = id_in(_call, kind);
    QJsonObject json;
    const result_t read =
        with_things(_call, [&](sqlite_store_t& _store, thing_editor_t& _editor) -> result_t {
            const result_t there = _editor.check_there(kind, id);
            const auto users =
                there.is_ok() ? _editor.referrers(kind, id) : base::result_of_t<QStringList>(there);
            installation_t thing;
            const result_t found =
                users.is_ok() ? store_reader_t(_store.connection()).read_things(kind, {id}, &thing)
                              : result_t(users);
            json = thing_json(kind, id, thing);
            if (!users.value.isEmpty()) {
                json.insert(QStringLiteral("used_by"), QJsonArray::fromStringList(users.value));
            }
            return found;
        });
    if (!read.is_ok()) {
        return read;
    }
    output_t output;
    if (_call.has("json")) {
        output.line(json);
    } else {
        output.add(key_lines(json).toUtf8());
    }
    return output.finish();
}

/// A new element says its type: none is right for all.
template <kind_t kind>
outcome_t add_thing(const call_t& _call) {
    if (kind == kind_t::element && !_call.has("type")) {
        return {status_usage, QStringLiteral("A new element needs --type N.")};
    }
    const QString id = id_in(_call, kind);
    return with_things(_call, [&](sqlite_store_t&, thing_editor_t& _editor) {
        return _editor.add(
            kind, id, [&](installation_t* _thing) { return edit_thing(_call, kind, id, _thing); });
    });
}

template <kind_t kind>
outcome_t change_thing(const call_t& _call) {
    const QString id = id_in(_call, kind);
    return with_things(_call, [&](sqlite_store_t&, thing_editor_t& _editor) {
        return _editor.change(
            kind, id, [&](installation_t* _thing) { return edit_thing(_call, kind, id, _thing); });
    });
}

template <kind_t kind>
outcome_t rename_thing(const call_t& _call) {
    return with_things(_call, [&](sqlite_store_t&, thing_editor_t& _editor) {
        return _editor.rename(kind, id_in(_call, kind), _call["NEW"]);
    });
}

template <kind_t kind>
outcome_t remove_thing(const call_t& _call) {
    const QString id = id_in(_call, kind);
    return with_things(_call, [&](sqlite_store_t&, thing_editor_t& _editor) {
        const result_t there = _editor.check_there(kind, id);
        const result_t agreed =
            there.is_ok()
                ? confirm(_call,
                          QStringLiteral("This removes the %1 %2%3.")
                              .arg(database::store::word_of(kind), id,
                                   QLatin1String(kind == kind_t::element ? " with all grants on it"
                                                                         : "")))
                : there;
        return agreed.is_ok() ? _editor.remove(kind, id) : agreed;
    });
}

/// What differs between the kinds, for help.
struct texts_t {
    const char* names[6];     ///< list, show, add, set, rename, remove
    const char* one;          ///< "ELEMENT"
    const char* one_and_new;  ///< "ELEMENT NEW"
    const char* to_edit;      ///< "ELEMENT FUNCTION=ITEM..."
    const char* more;         ///< of add and set
    QStringList add_examples;
    QStringList set_examples;
};

template <kind_t kind>
commands_t commands_for(const texts_t& _texts) {
    constexpr works_on_t changes = works_on_t::changed_installation;
    // Values come from what the installation is joined to; a new item may begin with one.
    QList<option_t> to_add = edit_options(kind);
    to_add.removeIf([](const option_t& _option) {
        const QLatin1String name(_option.name);
        return name == QLatin1String("without") || name == QLatin1String("no-knx");
    });
    if (kind == kind_t::item) {
        to_add.prepend({"value", "VALUE", "what it holds at first"});
    }
    const auto& names = _texts.names;
    return {
        {.name = names[0],
         .arguments = "",
         .help = "list them",
         .run = list_things<kind>,
         .options = {json_option}},
        {.name = names[1],
         .arguments = _texts.one,
         .help = "show all of one",
         .run = show_thing<kind>,
         .options = {json_option}},
        {.name = names[2],
         .arguments = _texts.to_edit,
         .help = "add one",
         .run = add_thing<kind>,
         .on = changes,
         .options = to_add,
         .examples = _texts.add_examples,
         .more = _texts.more},
        {.name = names[3],
         .arguments = _texts.to_edit,
         .help = "change what is given",
         .run = change_thing<kind>,
         .on = changes,
         .options = edit_options(kind),
         .examples = _texts.set_examples,
         .more = _texts.more},
        {.name = names[4],
         .arguments = _texts.one_and_new,
         .help = "give it another identifier; what refers to it follows",
         .run = rename_thing<kind>,
         .on = changes},
        {.name = names[5],
         .arguments = _texts.one,
         .help = "remove it, unless something refers to it",
         .run = remove_thing<kind>,
         .on = changes,
         .options = {yes_option}},
    };
}

}  // namespace

commands_t thing_commands() {
    return commands_for<kind_t::element>(
               {{"element list", "element show", "element add", "element set", "element rename",
                 "element remove"},
                "ELEMENT",
                "ELEMENT NEW",
                "ELEMENT FUNCTION=ITEM...",
                "FUNCTION=ITEM connects a function to an item, FUNCTION= to nothing.",
                {QStringLiteral("element add e-desk --name 'Desk lamp' --type 1 execute=i-desk")},
                {QStringLiteral("element set e-desk --name Lamp level=i-desk-level"),
                 QStringLiteral("element set e-desk --without level")}}) +
           commands_for<kind_t::item>(
               {{"item list", "item show", "item add", "item set", "item rename", "item remove"},
                "ITEM",
                "ITEM NEW",
                "ITEM",
                "To report a value, see torlanctl set.",
                {QStringLiteral("item add i-desk --value 0 --min 0 --max 1 --step 1"),
                 QStringLiteral("item add i-outside --writable no --knx-type 9.001 "
                                "--knx-status 3/1/7")},
                {QStringLiteral("item set i-desk --max none")}}) +
           commands_for<kind_t::scenario>(
               {{"scenario list", "scenario show", "scenario add", "scenario set",
                 "scenario rename", "scenario remove"},
                "SCENARIO",
                "SCENARIO NEW",
                "SCENARIO",
                "",
                {QStringLiteral("scenario add s-night")},
                {QStringLiteral("scenario set s-night --knx-write 0/0/9 --knx-scene 3")}}) +
           commands_for<kind_t::thermostat>(
               {{"thermostat list", "thermostat show", "thermostat add", "thermostat set",
                 "thermostat rename", "thermostat remove"},
                "THERMOSTAT",
                "THERMOSTAT NEW",
                "THERMOSTAT KEY=ITEM...",
                "KEY=ITEM connects a key, such as setpoint, to an item, KEY= to nothing.",
                {QStringLiteral("thermostat add t-bath setpoint=i-bath-setpoint --actual i-bath")},
                {QStringLiteral("thermostat set t-bath mode=i-bath-mode")}});
}

}  // namespace torlan
