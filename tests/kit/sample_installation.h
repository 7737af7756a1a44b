#pragma once

#include <QTemporaryDir>

#include "installation/installation_t.h"
#include "store/sqlite_store_t.h"

namespace sample {

/// One element of each kind and two users.
inline database::installation::installation_t installation() {
    database::installation::installation_t whole;
    whole.topic = QStringLiteral("installation/0001");
    whole.items = {
        {"i-lamp", "0"}, {"i-dim", "40"}, {"i-set", "21"}, {"i-temp", "20.5"}, {"i-win", ""}};
    whole.scenarios = {{"s-night", false}};
    whole.thermostats = {{"t-living", {{{"mode", ""}, {"setpoint", "i-set"}}, "i-temp", "i-win"}}};
    whole.elements = {
        {"e-lamp", {"Kitchen lamp", 1, 0, {{"dimmer", QString()}, {"execute", "i-lamp"}}, "", ""}},
        {"e-night", {"Good night", 8, -2147483647 - 1, {{"execute", "i-dim"}}, "s-night", ""}},
        {"e-therm", {"Living room", 17, 0, {}, "", "t-living"}}};
    whole.users = {{"u-alice", {"alice", "$7$1$c2FsdA==$aGFzaA=="}}, {"u-bob", {"bob", "hash"}}};
    whole.permissions = {{"u-alice", {{"e-lamp", 3}, {"e-night", 1}}}, {"u-bob", {{"e-lamp", 2}}}};
    return whole;
}

/// A database file of its own; holds the sample installation.
class file_t {
 public:
    explicit file_t(const database::installation::installation_t& _content = installation()) {
        database::store::sqlite_store_t store;
        error = store.open(path()).error;
        if (error.isEmpty()) {
            error = store.replace(_content).error;
        }
    }
    QString path() const { return folder.filePath(QStringLiteral("installation.db")); }

    QString error;  ///< empty: made

 private:
    QTemporaryDir folder;
};

/// Another program that writes: a plain connection, without this program's settings. Each call is
/// a transaction.
class foreign_writer_t {
 public:
    explicit foreign_writer_t(const QString& _path) {
        using database::store::connection_t;
        error = connection.open(_path, connection_t::access_t::read_write, 5000).error;
    }
    bool write(const QStringList& _statements) {
        QStringList all = _statements;
        all.prepend(QStringLiteral("BEGIN IMMEDIATE"));
        all.append(QStringLiteral("COMMIT"));
        for (const QString& sql : all) {
            if (error.isEmpty()) {
                error = connection.run(sql).error;
            }
        }
        return error.isEmpty();
    }
    QString read(const QString& _sql) { return connection.value(_sql).value.toString(); }

    QString error;

 private:
    database::store::connection_t connection;
};

}  // namespace sample
