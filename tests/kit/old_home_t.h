#pragma once

#include <QDir>
#include <QTemporaryDir>

#include "kit/layout_1.h"
#include "store/open_database.h"

namespace sample {

/// A folder of its own with a database of layout 1, see layout_1_t.
struct old_home_t {
    explicit old_home_t(const QStringList& _more = {}) {
        if (const layout_1_t made(path, _more); !made.error.isEmpty()) {
            qFatal("%s", qPrintable(made.error));
        }
    }

    /// Another home with the same database.
    old_home_t(const old_home_t& _other) {
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

    QString file(const char* _name) const { return folder.filePath(QLatin1String(_name)); }
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
    QString copy = file("installation.layout-1.db");  ///< where the copy is to be
};

}  // namespace sample
