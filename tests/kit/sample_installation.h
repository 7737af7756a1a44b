#pragma once

#include <QTemporaryDir>
#include <limits>

#include "installation/document_reader.h"
#include "kit/small_home.h"
#include "store/sqlite_store_t.h"

namespace sample {

/// What looks like a password's hash, of nobody knows which password.
inline QString password_hash(char16_t _letter) {
    return QStringLiteral("$7$1$%1$%2==").arg(QString(16, _letter), QString(86, _letter));
}

/// The small home as the store keeps it, with what is unusual besides: a function without an item,
/// an element of a scenario with a function and all flags but one clear, a key of a thermostat
/// without an item.
inline database::installation::installation_t installation() {
    const auto read = database::installation::read_document(kit::small_home_text(), "small home");
    if (!read.is_ok()) {
        qFatal("%s", qPrintable(read.error));
    }
    auto whole = read.value;
    whole.elements["e-lamp"].functions.insert("spare", QString());
    whole.elements["e-night"].functions.insert("execute", "i-dim");
    whole.elements["e-night"].flags = std::numeric_limits<qint32>::min();
    whole.thermostats["t-living"].ids.insert("mode", QString());
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
