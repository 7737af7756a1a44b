#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <atomic>

namespace support {

/// Another program on an installation's database. Any thread, but one.
class database_shell_t {
 public:
    explicit database_shell_t(const QString& _file) : name(QStringLiteral("shell-%1").arg(++made)) {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE", name);
        database.setDatabaseName(_file);
        database.open();
        run("PRAGMA busy_timeout = 10000");
        run("PRAGMA foreign_keys = ON");
    }
    ~database_shell_t() { QSqlDatabase::removeDatabase(name); }
    Q_DISABLE_COPY_MOVE(database_shell_t)

    bool run(const QString& _sql) const {
        return QSqlQuery(QSqlDatabase::database(name)).exec(_sql);
    }

    /// All in one change.
    bool run_together(const QStringList& _statements) const {
        bool done = run("BEGIN IMMEDIATE");
        for (const QString& sql : _statements) {
            done = done && run(sql);
        }
        return run(done ? "COMMIT" : "ROLLBACK") && done;
    }

 private:
    static inline std::atomic<int> made{0};
    const QString name;
};

}  // namespace support
