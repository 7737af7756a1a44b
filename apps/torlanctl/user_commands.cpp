#include "accounts/broker_hash.h"
#include "commands.h"
#include "confirmation.h"
#include "database/name_rules.h"
#include "given_password.h"
#include "installation/password_error.h"
#include "opened_store.h"
#include "output_t.h"
#include "store/overview_t.h"

namespace torlan {

namespace {

using base::result_t;
using database::store::overview_t;
using database::store::sqlite_store_t;
using database::store::store_editor_t;

result_t list_rows(const call_t& _call, overview_t* _overview, output_t* _output) {
    QString after;
    for (;;) {
        const auto page = _overview->users(after);
        if (!page.is_ok() || page.value.isEmpty() || !_output->is_read()) {
            return page;
        }
        for (const overview_t::user_row_t& row : page.value) {
            if (_call.has("json")) {
                _output->line(QJsonObject{{QStringLiteral("user"), row.username},
                                          {QStringLiteral("id"), row.id},
                                          {QStringLiteral("grants"), row.grants}});
            } else {
                _output->line(
                    QStringLiteral("%1 %2 grants").arg(row.username, -24).arg(row.grants));
            }
        }
        after = page.value.constLast().username;
    }
}

outcome_t list_users(const call_t& _call) {
    sqlite_store_t store;
    const result_t opened = open_store(&store, _call);
    if (!opened.is_ok()) {
        return opened;
    }
    overview_t overview(store.connection());
    output_t output;
    const result_t listed = list_rows(_call, &overview, &output);
    const result_t written = output.finish();
    return listed.is_ok() ? written : listed;
}

/// Reads a password and hands its hash on.
template <typename use_t>
result_t with_password_hash(const call_t& _call, use_t _use) {
    const auto password = given_password(_call, database::installation::password_error);
    if (!password.is_ok()) {
        return password;
    }
    return _use(accounts::make_password_hash(password.value));
}

outcome_t add_user(const call_t& _call) {
    const QString name = _call["NAME"];
    const QString error = database::identifier_error(name);
    if (!error.isEmpty()) {
        return result_t::failed(
            QStringLiteral("The user name %1 %2.").arg(database::quoted(name), error));
    }
    return edit(_call, [&](store_editor_t& _editor) {
        return with_password_hash(
            _call, [&](const QString& _hash) { return _editor.add_user(name, _hash); });
    });
}

outcome_t set_password(const call_t& _call) {
    return edit(_call, [&](store_editor_t& _editor) {
        return with_password_hash(_call, [&](const QString& _hash) {
            return _editor.set_password(_call["USER"], _hash);
        });
    });
}

outcome_t rename_user(const call_t& _call) {
    return edit(_call, [&](store_editor_t& _editor) {
        return _editor.rename_user(_call["USER"], _call["NAME"]);
    });
}

outcome_t remove_user(const call_t& _call) {
    return edit(_call, [&](store_editor_t& _editor) {
        const auto grants = _editor.grants_of(_call["USER"]);
        const result_t agreed =
            grants.is_ok()
                ? confirm(_call, QStringLiteral("This removes the user %1 with %2 grants.")
                                     .arg(_call["USER"])
                                     .arg(grants.value))
                : result_t(grants);
        return agreed.is_ok() ? _editor.remove_user(_call["USER"]) : agreed;
    });
}

}  // namespace

commands_t user_commands() {
    constexpr works_on_t changes = works_on_t::changed_installation;
    return {
        {.name = "user list",
         .arguments = "",
         .help = "list the API users",
         .run = list_users,
         .options = {json_option},
         .examples = {QStringLiteral("user list")}},
        {.name = "user add",
         .arguments = "NAME",
         .help = "add an API user; the password comes from standard input",
         .run = add_user,
         .on = changes,
         .options = {password_file_option},
         .examples = {QStringLiteral("user add erin"),
                      QStringLiteral("user add erin --password-file erin.secret")}},
        {.name = "user passwd",
         .arguments = "USER",
         .help = "change a password, read from standard input",
         .run = set_password,
         .on = changes,
         .options = {password_file_option},
         .examples = {QStringLiteral("user passwd erin")}},
        {.name = "user rename",
         .arguments = "USER NAME",
         .help = "give a user another name, who keeps password and grants",
         .run = rename_user,
         .on = changes,
         .examples = {QStringLiteral("user rename erin erin.2")}},
        {.name = "user remove",
         .arguments = "USER",
         .help = "remove an API user with all its grants",
         .run = remove_user,
         .on = changes,
         .options = {yes_option},
         .examples = {QStringLiteral("user remove erin --yes")}},
    };
}

}  // namespace torlan
