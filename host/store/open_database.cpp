#include "store/open_database.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include "store/database_check.h"
#include "store/schema.h"
#include "store/transaction_t.h"

namespace database::store {

using ::base::result_t;

namespace {

result_t create_private(const QString& _path) {
    QFile file(_path);
    if (file.open(QIODevice::ReadWrite, QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        return {};
    }
    return result_t::failed(
        QStringLiteral("The database %1 cannot be opened: %2.").arg(_path, file.errorString()));
}

result_t configure(connection_t& _connection) {
    for (const QLatin1String pragma :
         {QLatin1String("PRAGMA journal_mode = WAL"), QLatin1String("PRAGMA synchronous = NORMAL"),
          QLatin1String("PRAGMA foreign_keys = ON")}) {
        const result_t result = _connection.run(pragma);
        if (!result.is_ok()) {
            return result;
        }
    }
    return {};
}

::base::result_of_t<bool> is_current(connection_t& _connection) {
    const auto version = _connection.value(QStringLiteral("PRAGMA user_version"));
    if (!version.is_ok()) {
        return version;
    }
    return version.value.toInt() == schema_version;
}

/// Two programs may open a new file at once: the second finds the tables when it gets the lock.
result_t ensure_tables(connection_t& _connection) {
    const ::base::result_of_t<bool> before = is_current(_connection);
    if (!before.is_ok() || before.value) {
        return before;
    }
    transaction_t transaction(_connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    const ::base::result_of_t<bool> now = is_current(_connection);
    if (!now.is_ok() || now.value) {
        return now;
    }
    const result_t created = create_tables(_connection);
    return created.is_ok() ? transaction.commit() : created;
}

}  // namespace

result_t open_database(connection_t& _connection, const QString& _path, int _busy_ms) {
    // One at a time: SQLite does not wait for others when it changes the journal mode. Without the
    // lock (a folder that is not there or not ours) the steps below tell what is wrong.
    QLockFile one_at_a_time(_path + QStringLiteral(".opening"));
    static_cast<void>(one_at_a_time.tryLock(_busy_ms));

    const bool is_new = QFileInfo(_path).size() == 0;
    result_t result = is_new ? create_private(_path) : check_database(_path, _busy_ms);
    if (result.is_ok()) {
        result = _connection.open(_path, connection_t::access_t::read_write, _busy_ms);
    }
    if (result.is_ok()) {
        result = configure(_connection);
    }
    if (result.is_ok()) {
        result = ensure_tables(_connection);
    }
    if (!result.is_ok()) {
        _connection.close();
    }
    return result;
}

}  // namespace database::store
