#include "store/database_check.h"

#include <QFile>
#include <QSqlQuery>
#include <QStringList>

#include "store/schema.h"

namespace database::store {

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

result_t check_sound(connection_t& _connection) {
    const auto verdict = _connection.value(QStringLiteral("PRAGMA quick_check(1)"));
    const bool damaged = verdict.is_ok() ? verdict.value.toString() != QLatin1String("ok")
                                         : _connection.cause() == connection_t::cause_t::damaged;
    return damaged ? result_t::failed(
                         QStringLiteral("The database %1 is damaged and was left as it is.")
                             .arg(_connection.path()))
                   : result_t(verdict);
}

result_t check_tables(connection_t& _connection) {
    QStringList missing = table_names();
    const result_t result = _connection.each(
        QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"), {},
        [&missing](const QSqlQuery& _row) { missing.removeOne(_row.value(0).toString()); });
    return missing.isEmpty() || !result.is_ok()
               ? result
               : result_t::failed(
                     QStringLiteral("The database %1 lacks the table %2 and was left as it is.")
                         .arg(_connection.path(), missing.constFirst()));
}

result_t check_layout(connection_t& _connection) {
    const auto version = _connection.value(QStringLiteral("PRAGMA user_version"));
    const auto mark = _connection.value(QStringLiteral("PRAGMA application_id"));
    const auto tables = _connection.value(QStringLiteral("SELECT count(*) FROM sqlite_master"));
    for (const auto& number : {version, mark, tables}) {
        if (!number.is_ok()) {
            return number;
        }
    }
    const QString path = _connection.path();
    if (tables.value.toInt() > 0 && mark.value.toInt() != application_id) {
        return result_t::failed(
            QStringLiteral("The file %1 is not an installation database.").arg(path));
    }
    if (tables.value.toInt() > 0 && version.value.toInt() < 1) {
        return result_t::failed(
            QStringLiteral("The database %1 does not say its layout and was left as it is.")
                .arg(path));
    }
    if (version.value.toInt() > schema_version) {
        return result_t::failed(
            QStringLiteral("The database %1 has layout %2, but this program knows up to %3.")
                .arg(path)
                .arg(version.value.toInt())
                .arg(schema_version));
    }
    return tables.value.toInt() > 0 ? check_tables(_connection) : result_t();
}

}  // namespace

result_t check_database(const QString& _path, int _busy_ms) {
    connection_t connection;
    result_t result = open_to_look(connection, _path, _busy_ms);
    if (result.is_ok()) {
        result = check_sound(connection);
    }
    return result.is_ok() ? check_layout(connection) : result;
}

}  // namespace database::store
