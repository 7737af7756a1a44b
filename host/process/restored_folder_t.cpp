#include "process/restored_folder_t.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

#include "base/sync_path.h"

namespace process {

using base::result_t;

namespace {

result_t failure(const QString& _path) {
    return result_t::failed(QStringLiteral("The restoration cannot be finished: %1: %2.")
                                .arg(_path, qt_error_string(errno)));
}

bool rename(const QString& _from, const QString& _to) {
    return std::rename(QFile::encodeName(_from).constData(), QFile::encodeName(_to).constData()) ==
           0;
}

/// What root puts into another account's folder is that account's.
bool give_to_owner_of(const QString& _folder, const QString& _file) {
    struct stat owner {};
    return ::geteuid() != 0 ||
           (::stat(QFile::encodeName(_folder).constData(), &owner) == 0 &&
            ::lchown(QFile::encodeName(_file).constData(), owner.st_uid, owner.st_gid) == 0);
}

}  // namespace

result_t restored_folder_t::prepare() {
    give_up();
    const QString path = prepared({});
    return ::mkdir(QFile::encodeName(path).constData(), 0700) == 0 ? result_t() : failure(path);
}

QString restored_folder_t::prepared(const QString& _name) const {
    return folder + QStringLiteral("/restore.prepared/") + _name;
}

QString restored_folder_t::committed() const {
    return folder + QStringLiteral("/restore.committed");
}

void restored_folder_t::give_up() {
    QDir(prepared({})).removeRecursively();
}

result_t restored_folder_t::commit() {
    const QString from = QDir::cleanPath(prepared({}));
    return base::sync_path(from) && rename(from, committed()) && base::sync_path(folder)
               ? result_t()
               : failure(from);
}

bool restored_folder_t::is_unfinished() const {
    return QFileInfo(committed()).isDir();
}

result_t restored_folder_t::finish() {
    if (!is_unfinished()) {
        return {};
    }
    result_t moved = move(QStringLiteral("settings.json"));
    const QString database = QStringLiteral("installation.db");
    if (moved.is_ok() && QFileInfo::exists(committed() + QLatin1Char('/') + database)) {
        // What the former one has left would be taken for the new one's.
        for (const char* const suffix : {"-wal", "-shm", "-journal"}) {
            QFile::remove(folder + QLatin1Char('/') + database + QLatin1String(suffix));
        }
        moved = base::sync_path(folder) ? move(database) : failure(folder);
    }
    if (!moved.is_ok()) {
        return moved;
    }
    // Both are in their places on the medium before nothing says any more that they have to be.
    if (!base::sync_path(folder) || ::rmdir(QFile::encodeName(committed()).constData()) != 0) {
        return failure(committed());
    }
    return base::sync_path(folder) ? result_t() : failure(folder);
}

result_t restored_folder_t::move(const QString& _name) {
    const QString from = committed() + QLatin1Char('/') + _name;
    const QString to = folder + QLatin1Char('/') + _name;
    if (!QFileInfo::exists(from)) {
        return {};  // there already, or not part of it
    }
    return give_to_owner_of(folder, from) && rename(from, to) ? result_t() : failure(to);
}

}  // namespace process
