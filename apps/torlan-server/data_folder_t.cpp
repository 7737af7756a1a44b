#include "data_folder_t.h"

#include <QDir>
#include <QFileInfo>

#include "control/protocol.h"
#include "process/holder_text.h"
#include "process/restored_folder_t.h"
#include "process/trusted_path.h"

namespace torlan {

data_folder_t::data_folder_t(const QString& _path)
    : path(QDir::cleanPath(_path)), lock(file(control::lock_name())) {}

base::result_t data_folder_t::open() {
    if (const base::result_t there = make(); !there.is_ok()) {
        return there;
    }
    if (const base::result_t ours = process::check_only_ours(path); !ours.is_ok()) {
        return ours;
    }
    switch (lock.take()) {
        case process::file_lock_t::state_t::held:
            return base::result_t::failed(QStringLiteral("The folder %1 is in use by %2.")
                                              .arg(path, process::holder_text(lock)));
        case process::file_lock_t::state_t::failed:
            return base::result_t::failed(
                QStringLiteral("The folder %1 cannot be written.").arg(path));
        default:
            return process::restored_folder_t(path).finish();
    }
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
    lock.release();
    if (!made.isEmpty()) {
        QDir(made).removeRecursively();
        made.clear();
    }
}

QString data_folder_t::file(const QString& _name) const {
    return QDir(path).filePath(_name);
}

}  // namespace torlan
