#include "store/backup.h"

#include <fcntl.h>
#include <unistd.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <cerrno>

#include "base/random_hex.h"
#include "base/sync_path.h"
#include "store/connection_t.h"
#include "store/database_check.h"
#include "store/store_writer_t.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

result_t failure(const QString& _path) {
    return result_t::failed(
        QStringLiteral("%1 cannot be written: %2.").arg(_path, qt_error_string(errno)));
}

/// A new file that nobody else can read; SQLite takes an empty one.
result_t create_private(const QString& _path) {
    const int descriptor = ::open(QFile::encodeName(_path).constData(),
                                  O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return failure(_path);
    }
    ::close(descriptor);
    return {};
}

result_t copy(const QString& _from, const QString& _to, int _busy_ms) {
    result_t result = create_private(_to);
    connection_t connection;
    if (result.is_ok()) {
        result = connection.open(_from, connection_t::access_t::read_only, _busy_ms);
    }
    return result.is_ok() ? connection.run(QStringLiteral("VACUUM INTO ?"), {_to}) : result;
}

/// In one file, without a log beside it.
result_t open_alone(connection_t* _connection, const QString& _path, int _busy_ms) {
    const result_t opened = _connection->open(_path, connection_t::access_t::read_write, _busy_ms);
    return opened.is_ok() ? _connection->run(QStringLiteral("PRAGMA journal_mode = DELETE"))
                          : opened;
}

result_t add_settings(const QString& _path, const QByteArray& _settings, int _busy_ms) {
    connection_t connection;
    result_t result = open_alone(&connection, _path, _busy_ms);
    if (result.is_ok()) {
        result = connection.run(
            QStringLiteral("CREATE TABLE backup (made TEXT NOT NULL, settings TEXT NOT NULL)"));
    }
    return result.is_ok()
               ? connection.run(QStringLiteral("INSERT INTO backup (made, settings) VALUES (?, ?)"),
                                {QDateTime::currentDateTimeUtc().toString(Qt::ISODate),
                                 text_value(QString::fromUtf8(_settings))})
               : result;
}

result_of_t<QByteArray> take_settings(const QString& _path, int _busy_ms) {
    connection_t connection;
    const result_t opened = open_alone(&connection, _path, _busy_ms);
    if (!opened.is_ok()) {
        return opened;
    }
    const auto table = connection.value(
        QStringLiteral("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = 'backup'"));
    if (!table.is_ok() || !table.value.isValid()) {
        return table.is_ok() ? result_of_t<QByteArray>(QByteArray())
                             : result_of_t<QByteArray>(table);
    }
    const auto settings = connection.value(QStringLiteral("SELECT settings FROM backup"));
    const result_t dropped =
        settings.is_ok() ? connection.run(QStringLiteral("DROP TABLE backup")) : result_t(settings);
    if (!dropped.is_ok()) {
        return dropped;
    }
    return settings.value.toString().toUtf8();
}

/// A link, not a new name: it replaces nothing.
result_t give_name(const QString& _temporary, const QString& _path) {
    const bool is_named = ::base::sync_path(_temporary) &&
                          ::link(QFile::encodeName(_temporary).constData(),
                                 QFile::encodeName(_path).constData()) == 0 &&
                          ::base::sync_path(QFileInfo(_path).absolutePath());
    return is_named ? result_t() : failure(_path);
}

}  // namespace

result_t write_backup(const QString& _path, const QString& _backup, const QByteArray& _settings,
                      int _busy_ms) {
    const QFileInfo info(_backup);
    const QString temporary = QStringLiteral("%1/.%2.%3")
                                  .arg(info.absolutePath(), info.fileName(), ::base::random_hex(8));
    result_t result = copy(_path, temporary, _busy_ms);
    if (result.is_ok()) {
        result = add_settings(temporary, _settings, _busy_ms);
    }
    if (result.is_ok()) {
        result = give_name(temporary, _backup);
    }
    QFile::remove(temporary);
    QFile::remove(temporary + QStringLiteral("-journal"));
    return result;
}

result_of_t<QByteArray> unpack_backup(const QString& _backup, const QString& _path, int _busy_ms) {
    if (!QFileInfo(_backup).isFile()) {
        return result_t::failed(QStringLiteral("There is no file %1.").arg(_backup));
    }
    // Sound, of this program and not empty.
    result_t result = check_database(_backup, _busy_ms);
    const auto holds =
        result.is_ok() ? holds_installation(_backup, _busy_ms) : result_of_t<bool>(result);
    if (holds.is_ok() && !holds.value) {
        return result_t::failed(QStringLiteral("There is no installation in %1.").arg(_backup));
    }
    result = holds.is_ok() ? copy(_backup, _path, _busy_ms) : result_t(holds);
    if (!result.is_ok()) {
        return result;
    }
    const auto settings = take_settings(_path, _busy_ms);
    if (settings.is_ok() && !::base::sync_path(_path)) {
        return failure(_path);
    }
    return settings;
}

}  // namespace database::store
