#include "store/schema.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include "store/transaction_t.h"

namespace database::store {

using ::base::result_t;

namespace {

constexpr int application_id = 0x746f7264;  // marks the file as an installation database

result_t create_private(const QString& _path) {
    QFile file(_path);
    if (file.open(QIODevice::ReadWrite, QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        return {};
    }
    return result_t::failed(
        QStringLiteral("The database %1 cannot be opened: %2.").arg(_path, file.errorString()));
}

/// Looks at an existing file through a read-only connection: even closing a writing one would
/// change it when there is a write-ahead log.
result_t check_existing(const QString& _path) {
    connection_t connection;
    const result_t opened = connection.open(_path, connection_t::access_t::read_only, 5000);
    if (!opened.is_ok()) {
        return opened;
    }
    const QString verdict = connection.value(QStringLiteral("PRAGMA quick_check(1)")).toString();
    if (verdict != QLatin1String("ok")) {
        return result_t::failed(
            QStringLiteral("The database %1 is damaged and was left as it is.").arg(_path));
    }
    const int version = connection.value(QStringLiteral("PRAGMA user_version")).toInt();
    const int tables =
        connection.value(QStringLiteral("SELECT count(*) FROM sqlite_master")).toInt();
    const int mark = connection.value(QStringLiteral("PRAGMA application_id")).toInt();
    if (tables > 0 && mark != application_id) {
        return result_t::failed(
            QStringLiteral("The file %1 is not an installation database.").arg(_path));
    }
    if (version > schema_version) {
        return result_t::failed(
            QStringLiteral("The database %1 has layout %2, but this program knows up to %3.")
                .arg(_path)
                .arg(version)
                .arg(schema_version));
    }
    return {};
}

result_t configure(connection_t& _connection) {
    for (const char* pragma :
         {"PRAGMA journal_mode = WAL", "PRAGMA synchronous = NORMAL", "PRAGMA foreign_keys = ON"}) {
        const result_t result = _connection.run(QLatin1String(pragma));
        if (!result.is_ok()) {
            return result;
        }
    }
    return {};
}

bool is_comment(const QString& _block) {
    const QStringList lines = _block.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return std::all_of(lines.begin(), lines.end(),
                       [](const QString& _line) { return _line.startsWith(QLatin1String("--")); });
}

result_t create_tables(connection_t& _connection) {
    QFile file(QStringLiteral(":/store/schema.sql"));
    if (!file.open(QIODevice::ReadOnly)) {
        return result_t::failed(QStringLiteral("This program lacks its database layout."));
    }
    const QStringList blocks = QString::fromUtf8(file.readAll()).split(QLatin1String("\n\n"));
    for (const QString& block : blocks) {
        const result_t result = is_comment(block) ? result_t() : _connection.run(block);
        if (!result.is_ok()) {
            return result;
        }
    }
    const result_t marked =
        _connection.run(QStringLiteral("PRAGMA application_id = %1").arg(application_id));
    return marked.is_ok()
               ? _connection.run(QStringLiteral("PRAGMA user_version = %1").arg(schema_version))
               : marked;
}

/// Two programs may open a new file at once: the second finds the tables when it gets the lock.
result_t ensure_tables(connection_t& _connection) {
    const QString version = QStringLiteral("PRAGMA user_version");
    if (_connection.value(version).toInt() == schema_version) {
        return {};
    }
    transaction_t transaction(_connection, transaction_t::kind_t::writing);
    if (!transaction.begun().is_ok()) {
        return transaction.begun();
    }
    if (_connection.value(version).toInt() == schema_version) {
        return transaction.commit();
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
    result_t result = is_new ? create_private(_path) : check_existing(_path);
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
