#include <QFileInfo>

#include "commands.h"
#include "installation/document_reader.h"
#include "installation/document_writer.h"
#include "installation/keep_users.h"
#include "installation/shared_items.h"
#include "installation/tidy.h"
#include "opened_store.h"
#include "output_t.h"
#include "program/file_reader_t.h"
#include "program/private_file.h"
#include "program/progress_line_t.h"
#include "program/say.h"
#include "program/standard_streams.h"
#include "store/move_aside.h"
#include "store/stored_users.h"

/// Whole installations as documents.
namespace torlan {

namespace {

using namespace database::installation;
using base::result_t;
using database::store::sqlite_store_t;

base::result_of_t<installation_t> read_file(const call_t& _call) {
    const QString file = _call["FILE"];
    const auto bytes = file_reader_t(file, max_document_bytes).read();
    if (!bytes.is_ok()) {
        return bytes;
    }
    progress_line_t line;
    line.show(QStringLiteral("checking %1").arg(file));
    return read_document(bytes.value, file,
                         database::store::stored_users(database_file(_call), 5000));
}

result_t replace(const installation_t& _installation, sqlite_store_t* _store) {
    progress_line_t line;
    line.show(QStringLiteral("writing %1 elements, %2 items and the rights of %3 users")
                  .arg(_installation.elements.size())
                  .arg(_installation.items.size())
                  .arg(_installation.users.size()));
    return _store->replace(_installation);
}

/// Nothing else is said of a file with problems: what import says is the first of these.
outcome_t tell_problems(const QString& _file, const QStringList& _problems, bool _as_json) {
    output_t output;
    for (const QString& problem : _problems) {
        if (_as_json) {
            output.line(QJsonObject{{QStringLiteral("problem"), problem}});
        } else {
            output.line(problem);
        }
    }
    const result_t written = output.finish();
    return written.is_ok() ? result_t::failed(QStringLiteral("%1 cannot be imported.").arg(_file))
                           : written;
}

void tell_all(const QStringList& _sentences) {
    for (const QString& sentence : _sentences) {
        say(stderr, sentence);
    }
}

result_t put(const call_t& _call, installation_t _installation) {
    sqlite_store_t store;
    const result_t opened = open_store(&store, _call, missing_t::create);
    if (opened.is_ok() && _call.has("keep-users")) {
        const auto former = store.read();
        if (!former.is_ok()) {
            return former;
        }
        tell_all(keep_users(former.value, &_installation));
    }
    const result_t replaced = opened.is_ok() ? replace(_installation, &store) : opened;
    if (replaced.is_ok()) {
        tell_notes(&store);
        tell_all(shared_items(_installation));
    }
    return replaced.is_ok() ? store.connection().check_place() : replaced;
}

result_t make_room(const call_t& _call) {
    const QString path = database_file(_call);
    const auto moved = database::store::move_unusable_aside(path, 5000);
    if (moved.is_ok() && !moved.value.isEmpty()) {
        say(stderr, QStringLiteral("The database %1 could not be used and is kept in %2.")
                        .arg(path, moved.value));
    }
    return moved;
}

outcome_t import_file(const call_t& _call) {
    const auto document = read_file(_call);
    result_t result(document);
    if (result.is_ok() && _call.has("replace")) {
        result = make_room(_call);
    }
    return result.is_ok() ? put(_call, document.value) : result;
}

outcome_t validate_file(const call_t& _call) {
    const QString file = _call["FILE"];
    const auto bytes = file_reader_t(file, max_document_bytes).read();
    if (!bytes.is_ok()) {
        return bytes;
    }
    const QStringList problems = document_problems(bytes.value);
    if (problems.size() > 1 || (_call.has("json") && !problems.isEmpty())) {
        return tell_problems(file, problems, _call.has("json"));
    }
    const auto document =
        read_document(bytes.value, file, database::store::stored_users(database_file(_call), 5000));
    if (!document.is_ok()) {
        return document;
    }
    tell_all(shared_items(document.value));
    const installation_t& whole = document.value;
    output_t output;
    if (_call.has("json")) {
        output.line(QJsonObject{{QStringLiteral("elements"), whole.elements.size()},
                                {QStringLiteral("items"), whole.items.size()},
                                {QStringLiteral("scenarios"), whole.scenarios.size()},
                                {QStringLiteral("thermostats"), whole.thermostats.size()},
                                {QStringLiteral("users"), whole.users.size()}});
    } else {
        output.line(QStringLiteral("%1 can be imported: %2 elements, %3 items, %4 users.")
                        .arg(_call["FILE"])
                        .arg(whole.elements.size())
                        .arg(whole.items.size())
                        .arg(whole.users.size()));
    }
    return output.finish();
}

base::result_of_t<QByteArray> exported(const call_t& _call, passwords_t _passwords) {
    sqlite_store_t store;
    const result_t opened = open_store(&store, _call);
    if (!opened.is_ok()) {
        return opened;
    }
    auto installation = store.read();
    if (!installation.is_ok()) {
        return installation;
    }
    tell_notes(&store);
    for (const QString& what : tidy_whole(&installation.value)) {
        say(stderr, what + QLatin1Char('.'));
    }
    const QByteArray document = write_document(installation.value, _passwords);
    if (document.size() > max_document_bytes) {
        return result_t::failed(
            QStringLiteral("The document would be larger than 64 MiB, which no import reads."));
    }
    return document;
}

outcome_t export_document(const call_t& _call) {
    const bool is_secret = _call.has("with-passwords");
    const auto document = exported(_call, is_secret ? passwords_t::hashed : passwords_t::left_out);
    if (!document.is_ok()) {
        return document;
    }
    return is_secret ? write_private_file(_call["with-passwords"], document.value)
                     : write_output(document.value);
}

}  // namespace

commands_t document_commands() {
    return {
        {.name = "import",
         .arguments = "FILE",
         .help = "put the installation in FILE in the place of what is there",
         .run = import_file,
         .on = works_on_t::changed_installation,
         .options = {{"keep-users", "", "keep the users, with their passwords and grants"},
                     {"replace", "",
                      "also where the database is damaged; that is kept under another name"}},
         .examples = {QStringLiteral("import home.json"),
                      QStringLiteral("import --keep-users home.json")},
         .more = "What differs is changed, all of it or nothing. A user without a password in FILE "
                 "keeps that of the same id and name."},
        {.name = "export",
         .arguments = "",
         .help = "write the installation to standard output, without passwords",
         .run = export_document,
         .options = {{"with-passwords", "FILE",
                      "with password hashes, into a new file of the owner's alone"}},
         .examples = {QStringLiteral("export > home.json"),
                      QStringLiteral("export --with-passwords home-secret.json")}},
        {.name = "validate",
         .arguments = "FILE",
         .help = "check an installation file as import would, and change nothing",
         .run = validate_file,
         .on = works_on_t::nothing,
         .options = {json_option},
         .examples = {QStringLiteral("validate home.json")}},
    };
}

}  // namespace torlan
