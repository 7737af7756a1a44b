#include "commands.h"

#include <QDir>
#include <QFileInfo>

#include "accounts/broker_hash.h"
#include "audit_command.h"
#include "database/name_rules.h"
#include "database/permission.h"
#include "dpt_commands.h"
#include "installation/document_reader.h"
#include "installation/document_writer.h"
#include "installation/keep_users.h"
#include "installation/password_error.h"
#include "installation/shared_items.h"
#include "installation/tidy.h"
#include "live_commands.h"
#include "program/file_reader_t.h"
#include "program/password_input.h"
#include "program/private_file.h"
#include "program/say.h"
#include "program/standard_streams.h"
#include "store/database_check.h"
#include "store/move_aside.h"
#include "store/sqlite_store_t.h"
#include "store/store_editor_t.h"
#include "store/stored_users.h"

namespace torlan {

namespace {

using namespace database::installation;
using base::result_t;
using database::identifier_error;
using database::quoted;
using database::store::sqlite_store_t;
using database::store::store_editor_t;

enum class missing_t { refuse, create };

QString database_file(const QString& _data) {
    return QDir(_data).filePath(QStringLiteral("installation.db"));
}

void tell_notes(sqlite_store_t& _store) {
    for (const QString& sentence : _store.take_notes()) {
        say(stderr, sentence);
    }
}

result_t open(sqlite_store_t& _store, const QString& _data, missing_t _missing) {
    if (!QFileInfo(_data).isDir()) {
        return result_t::failed(QStringLiteral("There is no folder %1.").arg(_data));
    }
    const QString path = database_file(_data);
    const auto exists = database::store::holds_installation(path, 5000);
    if (_missing == missing_t::refuse && exists.is_ok() && !exists.value) {
        return result_t::failed(
            QStringLiteral("There is no installation in %1: import one first.").arg(_data));
    }
    const result_t opened = exists.is_ok() ? _store.open(path) : result_t(exists);
    tell_notes(_store);
    return opened;
}

template <typename edit_t>
result_t edit(const QString& _data, edit_t _edit) {
    sqlite_store_t store;
    const result_t opened = open(store, _data, missing_t::refuse);
    if (!opened.is_ok()) {
        return opened;
    }
    store_editor_t editor(store.connection());
    const result_t edited = _edit(editor);
    return edited.is_ok() ? store.connection().check_place() : edited;
}

base::result_of_t<installation_t> read_file(const QString& _data, const QString& _file) {
    const auto bytes = file_reader_t(_file, max_document_bytes).read();
    if (!bytes.is_ok()) {
        return bytes;
    }
    return read_document(bytes.value, _file,
                         database::store::stored_users(database_file(_data), 5000));
}

enum class users_t { replaced, kept };

result_t put(const QString& _data, installation_t _installation, users_t _users) {
    sqlite_store_t store;
    const result_t opened = open(store, _data, missing_t::create);
    if (opened.is_ok() && _users == users_t::kept) {
        const auto former = store.read();
        if (!former.is_ok()) {
            return former;
        }
        for (const QString& sentence : keep_users(former.value, &_installation)) {
            say(stderr, sentence);
        }
    }
    const result_t replaced = opened.is_ok() ? store.replace(_installation) : opened;
    if (replaced.is_ok()) {
        tell_notes(store);
        for (const QString& sentence : shared_items(_installation)) {
            say(stderr, sentence);
        }
    }
    return replaced.is_ok() ? store.connection().check_place() : replaced;
}

result_t import_file(const QString& _data, const QStringList& _arguments) {
    const auto document = read_file(_data, _arguments[0]);
    return document.is_ok() ? put(_data, document.value, users_t::replaced) : result_t(document);
}

result_t import_but_users(const QString& _data, const QStringList& _arguments) {
    const auto document = read_file(_data, _arguments[0]);
    return document.is_ok() ? put(_data, document.value, users_t::kept) : result_t(document);
}

result_t import_over(const QString& _data, const QStringList& _arguments) {
    const auto document = read_file(_data, _arguments[0]);
    if (!document.is_ok()) {
        return document;
    }
    const QString path = database_file(_data);
    const auto moved = database::store::move_unusable_aside(path, 5000);
    if (!moved.is_ok()) {
        return moved;
    }
    if (!moved.value.isEmpty()) {
        say(stderr, QStringLiteral("The database %1 could not be used and is kept in %2.")
                        .arg(path, moved.value));
    }
    return put(_data, document.value, users_t::replaced);
}

base::result_of_t<QByteArray> exported(const QString& _data, passwords_t _passwords) {
    sqlite_store_t store;
    const result_t opened = open(store, _data, missing_t::refuse);
    if (!opened.is_ok()) {
        return opened;
    }
    auto installation = store.read();
    if (!installation.is_ok()) {
        return installation;
    }
    tell_notes(store);
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

result_t export_document(const QString& _data, const QStringList&) {
    const auto document = exported(_data, passwords_t::left_out);
    return document.is_ok() ? write_output(document.value) : result_t(document);
}

result_t export_with_passwords(const QString& _data, const QStringList& _arguments) {
    const auto document = exported(_data, passwords_t::hashed);
    return document.is_ok() ? write_private_file(_arguments[0], document.value)
                            : result_t(document);
}

result_t grant(const QString& _data, const QStringList& _arguments) {
    const std::optional<int> bits = database::permission::bits(_arguments[2]);
    if (!bits) {
        return result_t::failed(
            QStringLiteral("%1 is no permission: read, write, readwrite or deny.")
                .arg(quoted(_arguments[2])));
    }
    return edit(_data, [&](store_editor_t& _editor) {
        return _editor.grant(_arguments[0], _arguments[1], *bits);
    });
}

/// Reads a password and hands its hash on.
template <typename use_t>
result_t with_password_hash(use_t _use) {
    const auto password = read_password(password_error, QStringLiteral("Password: "));
    if (!password.is_ok()) {
        return password;
    }
    return _use(accounts::make_password_hash(password.value));
}

result_t add_user(const QString& _data, const QStringList& _arguments) {
    const QString error = identifier_error(_arguments[0]);
    if (!error.isEmpty()) {
        return result_t::failed(
            QStringLiteral("The user name %1 %2.").arg(quoted(_arguments[0]), error));
    }
    return edit(_data, [&](store_editor_t& _editor) {
        return with_password_hash(
            [&](const QString& _hash) { return _editor.add_user(_arguments[0], _hash); });
    });
}

result_t set_password(const QString& _data, const QStringList& _arguments) {
    return edit(_data, [&](store_editor_t& _editor) {
        return with_password_hash(
            [&](const QString& _hash) { return _editor.set_password(_arguments[0], _hash); });
    });
}

result_t remove_user(const QString& _data, const QStringList& _arguments) {
    return edit(_data, [&](store_editor_t& _editor) { return _editor.remove_user(_arguments[0]); });
}

result_t set_item(const QString& _data, const QStringList& _arguments) {
    return edit(_data, [&](store_editor_t& _editor) {
        return _editor.set_item(_arguments[0], _arguments[1]);
    });
}

}  // namespace

const QList<command_t>& commands() {
    static const QList<command_t> table{
        {"import --keep-users", "FILE",
         "put it there, but keep the users, with their passwords and grants", import_but_users,
         true, true},
        {"import --replace", "FILE",
         "the same where the database is damaged; that is kept under another name", import_over,
         true, true},
        {"import", "FILE", "put the installation in FILE in the place of what is there",
         import_file, true, true},
        {"export --with-passwords", "FILE",
         "the same with the users' password hashes, into a new file of the owner's alone",
         export_with_passwords},
        {"export", "", "write the installation to standard output, without passwords",
         export_document},
        {"grant", "USER ELEMENT PERMISSION",
         "let USER read, write or readwrite ELEMENT, or deny it", grant, true, true},
        {"user add", "NAME", "add an API user; the password comes from standard input", add_user,
         true, true},
        {"user passwd", "NAME", "change a password, read from standard input", set_password, true,
         true},
        {"user remove", "NAME", "remove an API user with all its permissions", remove_user, true,
         true},
        {"set", "ITEM VALUE", "report any value of any item, as the bus would: sensors, too",
         set_item, true, true},
        {"dpt encode", "TYPE VALUE", "print the bytes of a value of a KNX data point type",
         encode_value, false},
        {"dpt decode", "TYPE BYTES", "print the value that the bytes are", decode_value, false},
        {"dpt list", "", "list the data point types with their units and ranges", list_types,
         false},
        {"audit", "[OPTIONS]",
         "who did what: --user USER, --element ELEMENT, --since 10m|2h|3d|TIME, --json, --logs DIR",
         show_audit, true, false, check_audit_call},
        {"status", "[--json]", "what the server that runs on it, its broker and its bus are doing",
         show_status, true, false, check_status_call},
        {"bus", "[--follow] [--json]",
         "the bus: link, counters, the last telegrams, and each that comes", show_bus, true, false,
         check_bus_call},
    };
    return table;
}

}  // namespace torlan
