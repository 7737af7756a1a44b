#include "store/move_aside.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>

#include "base/sync_path.h"
#include "store/database_check.h"

namespace database::store {

using ::base::result_of_t;
using ::base::result_t;

namespace {

/// "…/installation.damaged-20260131-235959.db".
QString aside_path(const QString& _path) {
    const QFileInfo info(_path);
    return QStringLiteral("%1/%2.damaged-%3.%4")
        .arg(info.path(), info.completeBaseName(),
             QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyyMMdd-HHmmss")),
             info.suffix());
}

bool move(const QString& _from, const QString& _to) {
    return std::rename(QFile::encodeName(_from).constData(), QFile::encodeName(_to).constData()) ==
           0;
}

bool move_all(const QString& _path, const QString& _aside) {
    // What belongs to it first: without its file nobody takes it for another one's.
    for (const char* const suffix : {"-journal", "-wal"}) {
        const QLatin1String end(suffix);
        if (QFileInfo::exists(_path + end) && !move(_path + end, _aside + end)) {
            return false;
        }
    }
    return move(_path, _aside) && ::base::sync_path(QFileInfo(_path).absolutePath());
}

}  // namespace

result_of_t<QString> move_unusable_aside(const QString& _path, int _busy_ms) {
    bool in_use = false;
    const result_t usable =
        QFileInfo(_path).size() == 0 ? result_t() : check_database(_path, _busy_ms, &in_use);
    if (usable.is_ok()) {
        return QString();
    }
    if (in_use) {
        return usable;
    }
    const QString aside = aside_path(_path);
    if (QFileInfo::exists(aside) || !move_all(_path, aside)) {
        return result_t::failed(QStringLiteral("The database %1 cannot be moved to %2: %3.")
                                    .arg(_path, aside,
                                         QFileInfo::exists(aside)
                                             ? QStringLiteral("there is such a file")
                                             : qt_error_string(errno)));
    }
    return aside;
}

}  // namespace database::store
