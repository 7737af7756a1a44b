#include "store/open_database.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <cerrno>

#include "base/sync_path.h"
#include "store/database_check.h"
#include "store/migration.h"
#include "store/schema.h"
#include "store/transaction_t.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

result_t cannot_open(const QString& _path, const QString& _reason) {
    return result_t::failed(
        QStringLiteral("The database %1 cannot be opened: %2.").arg(_path, _reason));
}

/// What a former database of this name has left would be taken for the new one's: a program that
/// still runs on the former may even write to it.
void remove_logs(const QString& _path) {
    for (const char* const suffix : {"-wal", "-shm"}) {
        QFile::remove(_path + QLatin1String(suffix));
    }
}

result_t create_private(const QString& _path) {
    remove_logs(_path);
    QFile file(_path);
    if (!file.open(QIODevice::ReadWrite, QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        return cannot_open(_path, file.errorString());
    }
    // SQLite syncs what it makes, but neither this name nor that of a folder made a moment ago.
    const QString folder = QFileInfo(_path).absolutePath();
    static_cast<void>(::base::sync_path(QFileInfo(folder).absolutePath()));  // it may be not ours
    return ::base::sync_path(folder) ? result_t() : cannot_open(_path, qt_error_string(errno));
}

result_t configure(connection_t& _connection) {
    // Foreign keys stay off until the tables are those that this program knows.
    for (const QLatin1String pragma :
         {QLatin1String("PRAGMA journal_mode = WAL"), QLatin1String("PRAGMA synchronous = FULL"),
          // A log of 1 MiB, not of 4, that is cut again: small disks are full before that.
          QLatin1String("PRAGMA wal_autocheckpoint = 256"),
          QLatin1String("PRAGMA journal_size_limit = 1048576"),
          QLatin1String("PRAGMA foreign_keys = OFF")}) {
        const result_t result = _connection.run(pragma);
        if (!result.is_ok()) {
            return result;
        }
    }
    return {};
}

result_of_t<int> layout_of(connection_t& _connection) {
    const auto version = _connection.value(QStringLiteral("PRAGMA user_version"));
    if (!version.is_ok()) {
        return version;
    }
    return version.value.toInt();
}

result_t create(connection_t& _connection) {
    result_t result = create_tables(_connection);
    if (result.is_ok()) {
        result = create_triggers(_connection);
    }
    return result.is_ok() ? mark_layout(_connection) : result;
}

result_of_t<QStringList> make_current(connection_t& _connection, int _layout, int _busy_ms) {
    if (_layout == schema_version) {
        return QStringList();
    }
    if (_layout > 0) {
        return migrate(_connection, _layout, _busy_ms);
    }
    const result_t created = create(_connection);
    if (!created.is_ok()) {
        return created;
    }
    return QStringList();
}

/// Several programs may open a file at once: whoever gets the lock later finds the work done.
result_of_t<QStringList> ensure_layout(connection_t& _connection, int _busy_ms) {
    const result_of_t<int> before = layout_of(_connection);
    if (before.is_ok() && before.value == schema_version) {
        return QStringList();
    }
    transaction_t transaction(_connection, transaction_t::kind_t::writing);
    result_t result = transaction.begun();
    if (result.is_ok()) {
        result = check_layout(_connection);
    }
    if (!result.is_ok()) {
        return result;
    }
    const result_of_t<int> now = layout_of(_connection);
    if (!now.is_ok()) {
        return now;
    }
    const result_of_t<QStringList> notes = make_current(_connection, now.value, _busy_ms);
    if (notes.is_ok()) {
        result = transaction.commit();
    }
    if (!result.is_ok()) {
        return result;
    }
    return notes;
}

result_t open_file(connection_t& _connection, const QString& _path, int _busy_ms) {
    const bool is_new = QFileInfo(_path).size() == 0;
    result_t result = is_new ? create_private(_path) : check_database(_path, _busy_ms);
    if (result.is_ok()) {
        result = _connection.open(_path, connection_t::access_t::read_write, _busy_ms);
    }
    return result.is_ok() ? configure(_connection) : result;
}

result_of_t<QStringList> open_current(connection_t& _connection, const QString& _path,
                                      int _busy_ms) {
    const result_t opened = open_file(_connection, _path, _busy_ms);
    if (!opened.is_ok()) {
        return opened;
    }
    const result_of_t<QStringList> notes = ensure_layout(_connection, _busy_ms);
    if (!notes.is_ok()) {
        return notes;
    }
    const result_t ready = _connection.run(QStringLiteral("PRAGMA foreign_keys = ON"));
    if (!ready.is_ok()) {
        return ready;
    }
    return notes;
}

QString lock_of(const QString& _path) {
    return _path + QStringLiteral(".opening");
}

}  // namespace

result_of_t<bool> is_ready_to_open(const QString& _path, int _busy_ms) {
    if (QFileInfo(_path).size() == 0) {
        return false;
    }
    QLockFile one_at_a_time(lock_of(_path));
    return one_at_a_time.tryLock(0) ? holds_installation(_path, _busy_ms)
                                    : result_of_t<bool>(false);
}

result_of_t<QStringList> open_database(connection_t& _connection, const QString& _path,
                                       int _busy_ms) {
    // One at a time: SQLite does not wait for others when it changes the journal mode. Without the
    // lock (a folder that is not there or not ours) the steps below tell what is wrong.
    QLockFile one_at_a_time(lock_of(_path));
    static_cast<void>(one_at_a_time.tryLock(_busy_ms));

    result_of_t<QStringList> notes = open_current(_connection, _path, _busy_ms);
    if (!notes.is_ok()) {
        _connection.close();
    }
    return notes;
}

}  // namespace database::store
