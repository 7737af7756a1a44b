#pragma once

#include <QDir>
#include <QTemporaryDir>

#include "kit/former_layout.h"
#include "store/open_database.h"

namespace sample {

/// A folder of its own with a database of a former layout, see former_layout_t.
struct old_home_t {
    explicit old_home_t(const QStringList& _more = {}, int _layout = 1)
        : copy(folder.filePath(QStringLiteral("installation.layout-%1.db").arg(_layout))) {
        if (const former_layout_t made(path, _more, _layout); !made.error.isEmpty()) {
            qFatal("%s", qPrintable(made.error));
        }
    }

    /// Another home with the same database.
    old_home_t(const old_home_t& _other) : copy(file(QFileInfo(_other.copy).fileName())) {
        if (!QFile::copy(_other.path, path)) {
            qFatal("The database cannot be copied.");
        }
    }

    /// Opens the database and says what was told, be it why not.
    QStringList migrate() const {
        database::store::connection_t connection;
        const auto opened = database::store::open_database(connection, path, 1000);
        return opened.is_ok() ? opened.value : QStringList(opened.error);
    }

    QString file(const QString& _name) const { return folder.filePath(_name); }
    QStringList files() const {
        return QDir(folder.path()).entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name);
    }
    QString read(const QString& _sql) const { return foreign_writer_t(path).read(_sql); }
    database::installation::installation_t installation() const {
        database::store::sqlite_store_t store;
        return store.open(path).is_ok() ? store.read().value
                                        : database::installation::installation_t();
    }

    QTemporaryDir folder;
    QString path = file("installation.db");
    QString copy;  ///< where the copy is to be
};

}  // namespace sample
