#include "data_folder_t.h"

#include <QDir>
#include <QFileInfo>

#include "process/trusted_path.h"

namespace torlan {

data_folder_t::data_folder_t(const QString& _path) : path(QDir::cleanPath(_path)) {}

data_folder_t::~data_folder_t() = default;

base::result_t data_folder_t::open() {
    if (const base::result_t there = make(); !there.is_ok()) {
        return there;
    }
    if (const base::result_t ours = process::check_only_ours(path); !ours.is_ok()) {
        return ours;
    }
    lock = std::make_unique<QLockFile>(file(QStringLiteral("torlan.lock")));
    // Never by age: a host may run for years. A dead process's lock is taken over all the same.
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) {
        return {};
    }
    const bool in_use = lock->error() == QLockFile::LockFailedError;
    qint64 process = 0;
    QString host;
    QString program;
    const bool known = in_use && lock->getLockInfo(&process, &host, &program);
    lock.reset();
    if (known) {
        return base::result_t::failed(QStringLiteral("The folder %1 is in use by process %2 (%3).")
                                          .arg(path, QString::number(process), program));
    }
    return base::result_t::failed(
        QStringLiteral("The folder %1 %2.")
            .arg(path, in_use ? QStringLiteral("is in use") : QStringLiteral("cannot be written")));
}

base::result_t data_folder_t::make() {
    const QFileInfo info(path);
    if (info.exists()) {
        return info.isDir()
                   ? base::result_t()
                   : base::result_t::failed(QStringLiteral("%1 is not a folder.").arg(path));
    }
    QString missing = path;
    while (!QFileInfo::exists(QFileInfo(missing).path())) {
        missing = QFileInfo(missing).path();
    }
    const auto owner_only =
        QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
    if (!QDir().mkpath(path) || !QFile::setPermissions(path, owner_only)) {
        return base::result_t::failed(QStringLiteral("The folder %1 cannot be made.").arg(path));
    }
    made = missing;
    return {};
}

void data_folder_t::take_back() {
    lock.reset();
    if (!made.isEmpty()) {
        QDir(made).removeRecursively();
        made.clear();
    }
}

QString data_folder_t::file(const QString& _name) const {
    return QDir(path).filePath(_name);
}

}  // namespace torlan
