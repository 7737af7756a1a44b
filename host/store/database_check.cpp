#include "store/database_check.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QStringList>

#include "store/migration.h"
#include "store/schema.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

/// Through a read-only connection: even closing a writing one would change the file when there is a
/// write-ahead log. What a killed program left in a rollback journal needs a writing one.
result_t open_to_look(connection_t& _connection, const QString& _path, int _busy_ms) {
    using access_t = connection_t::access_t;
    const bool half_written = QFile::exists(_path + QStringLiteral("-journal"));
    return _connection.open(_path, half_written ? access_t::read_write : access_t::read_only,
                            _busy_ms);
}

QString damaged_text(const QString& _path) {
    return QStringLiteral(
               "The database %1 is damaged and was left as it is; torlanctl import --replace keeps "
               "it under another name and makes a new one.")
        .arg(_path);
}

result_t check_sound(connection_t& _connection) {
    const auto verdict = _connection.value(QStringLiteral("PRAGMA quick_check(1)"));
    const bool damaged = verdict.is_ok() ? verdict.value.toString() != QLatin1String("ok")
                                         : _connection.cause() == connection_t::cause_t::damaged;
    return damaged ? result_t::failed(damaged_text(_connection.path())) : result_t(verdict);
}

result_t check_tables(connection_t& _connection, int _layout) {
    QStringList missing = tables_of_layout(_layout);
    const result_t result = _connection.each(
        QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"), {},
        [&missing](const QSqlQuery& _row) { missing.removeOne(_row.value(0).toString()); });
    return missing.isEmpty() || !result.is_ok()
               ? result
               : result_t::failed(
                     QStringLiteral("The database %1 lacks the table %2 and was left as it is.")
                         .arg(_connection.path(), missing.constFirst()));
}

/// By what a file is known.
struct identity_t {
    int layout = 0;
    int mark = 0;
    int things = 0;  ///< tables, indices, triggers
};

result_of_t<identity_t> identity_of(connection_t& _connection) {
    identity_t identity;
    const result_t result = _connection.each(
        QStringLiteral("SELECT user_version, application_id, (SELECT count(*) FROM sqlite_master) "
                       "FROM pragma_user_version, pragma_application_id"),
        {}, [&identity](const QSqlQuery& _row) {
            identity = {_row.value(0).toInt(), _row.value(1).toInt(), _row.value(2).toInt()};
        });
    if (!result.is_ok()) {
        return result;
    }
    return identity;
}

}  // namespace

result_t check_layout(connection_t& _connection) {
    const result_of_t<identity_t> found = identity_of(_connection);
    const auto [layout, mark, things] = found.value;
    if (!found.is_ok() || (things == 0 && layout == 0)) {
        return found;
    }
    const QString path = _connection.path();
    if (mark != application_id) {
        return result_t::failed(
            QStringLiteral("The file %1 is not an installation database.").arg(path));
    }
    if (layout < 1) {
        return result_t::failed(
            QStringLiteral("The database %1 does not say its layout and was left as it is.")
                .arg(path));
    }
    if (layout > schema_version) {
        return result_t::failed(
            QStringLiteral("The database %1 has layout %2, but this program knows up to %3.")
                .arg(path)
                .arg(layout)
                .arg(schema_version));
    }
    return check_tables(_connection, layout);
}

result_t check_database(const QString& _path, int _busy_ms, bool* _in_use) {
    connection_t connection;
    result_t result = open_to_look(connection, _path, _busy_ms);
    if (result.is_ok()) {
        result = check_sound(connection);
    }
    if (result.is_ok()) {
        result = check_layout(connection);
    }
    if (_in_use != nullptr) {
        *_in_use = connection.cause() == connection_t::cause_t::busy;
    }
    return result;
}

result_of_t<bool> holds_installation(const QString& _path, int _busy_ms) {
    if (QFileInfo(_path).size() == 0) {
        return false;
    }
    connection_t connection;
    result_t result = open_to_look(connection, _path, _busy_ms);
    if (result.is_ok()) {
        result = check_layout(connection);
    }
    if (!result.is_ok()) {
        const bool damaged = connection.cause() == connection_t::cause_t::damaged;
        return damaged ? result_t::failed(damaged_text(_path)) : result;
    }
    const auto tables =
        connection.value(QStringLiteral("SELECT 1 FROM sqlite_master WHERE name = 'meta'"));
    if (!tables.is_ok() || !tables.value.isValid()) {
        return tables.is_ok() ? result_of_t<bool>(false) : result_of_t<bool>(tables);
    }
    // An import is one transaction, so that any row is one of a whole installation.
    const auto row =
        connection.value(QStringLiteral("SELECT 1 FROM meta UNION ALL SELECT 1 FROM elements UNION "
                                        "ALL SELECT 1 FROM users LIMIT 1"));
    if (!row.is_ok()) {
        return row;
    }
    return row.value.isValid();
}

}  // namespace database::store
