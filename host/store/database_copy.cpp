#include "store/database_copy.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cstdio>

#include "base/sync_path.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

result_t failure(const QString& _path, const QString& _reason) {
    return result_t::failed(
        QStringLiteral("The copy %1 cannot be written: %2.").arg(_path, _reason));
}

/// "…/installation.layout-1.db", "…/installation.layout-1-2.db" and so on.
QString copy_path(const QString& _path, int _layout, int _number) {
    const QFileInfo info(_path);
    const QString number = _number == 1 ? QString() : QStringLiteral("-%1").arg(_number);
    return QStringLiteral("%1/%2.layout-%3%4.%5")
        .arg(info.path(), info.completeBaseName(), QString::number(_layout), number, info.suffix());
}

/// What root copies is the database owner's, as the files that SQLite makes beside it.
bool give_to_owner_of(const QString& _path, const QFile& _copy) {
    struct stat database {};
    return ::geteuid() != 0 || (::stat(QFile::encodeName(_path).constData(), &database) == 0 &&
                                ::fchown(_copy.handle(), database.st_uid, database.st_gid) == 0);
}

/// A new file of its own, whatever had the name: a link is taken away and not followed.
result_t create_empty(const QString& _copy, const QString& _path) {
    QFile::remove(_copy);
    QFile file(_copy);
    if (!file.open(QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        return failure(_copy, file.errorString());
    }
    return give_to_owner_of(_path, file) ? result_t() : failure(_copy, qt_error_string(errno));
}

/// SQLite itself does not wait until a copy is on the medium.
result_t sync(const QString& _path) {
    return ::base::sync_path(_path) ? result_t() : failure(_path, qt_error_string(errno));
}

result_t copy_to(const QString& _path, const QString& _copy, int _busy_ms) {
    result_t result = create_empty(_copy, _path);
    connection_t connection;
    if (result.is_ok()) {
        result = connection.open(_path, connection_t::access_t::read_only, _busy_ms);
    }
    if (result.is_ok()) {
        result = connection.run(QStringLiteral("VACUUM INTO ?"), {_copy});
    }
    return result.is_ok() ? sync(_copy) : result;
}

/// A link is no copy: what it leads to may be the database itself. Opening a pipe would wait.
bool is_plain_file(const QString& _path) {
    const QFileInfo info(_path);
    return info.isFile() && !info.isSymLink();
}

bool hold_the_same(const QString& _one, const QString& _other) {
    constexpr qint64 piece = 1 << 20;
    QFile one(_one);
    QFile other(_other);
    if (!is_plain_file(_other) || !one.open(QIODevice::ReadOnly) ||
        !other.open(QIODevice::ReadOnly) || one.size() != other.size()) {
        return false;
    }
    while (!one.atEnd()) {
        if (one.read(piece) != other.read(piece)) {
            return false;
        }
    }
    return true;
}

/// Not QFile::rename(), which copies through a link where it cannot rename.
result_t rename(const QString& _from, const QString& _to) {
    if (std::rename(QFile::encodeName(_from).constData(), QFile::encodeName(_to).constData()) !=
        0) {
        return failure(_to, qt_error_string(errno));
    }
    return sync(QFileInfo(_to).path());
}

/// Gives a finished copy a name that nothing has, not even a link to nothing.
result_of_t<QString> keep(const QString& _part, const QString& _path, int _layout) {
    for (int number = 1;; ++number) {
        const QString target = copy_path(_path, _layout, number);
        if (hold_the_same(_part, target)) {
            QFile::remove(_part);
            return target;
        }
        const QFileInfo there(target);
        if (there.exists() || there.isSymLink()) {
            continue;
        }
        if (const result_t renamed = rename(_part, target); !renamed.is_ok()) {
            return renamed;
        }
        return target;
    }
}

}  // namespace

result_of_t<QString> copy_database(const QString& _path, int _layout, int _busy_ms) {
    const QString part = copy_path(_path, _layout, 1) + QStringLiteral(".part");
    const result_t copied = copy_to(_path, part, _busy_ms);
    const result_of_t<QString> kept =
        copied.is_ok() ? keep(part, _path, _layout) : result_of_t<QString>(copied);
    if (!kept.is_ok()) {
        QFile::remove(part);
    }
    return kept;
}

}  // namespace database::store
