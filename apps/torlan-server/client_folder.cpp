#include "client_folder.h"

#include <QDir>
#include <QFileInfo>

#include "logs/log_line.h"
#include "process/trusted_path.h"

namespace torlan {

namespace {

constexpr const char* source = "apps/torlan-server/client_folder";

/// The process's umask would keep the folder from other users.
bool make(const QString& _folder) {
    constexpr auto for_all = QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                             QFileDevice::ExeOwner | QFileDevice::ReadGroup |
                             QFileDevice::ExeGroup | QFileDevice::ReadOther | QFileDevice::ExeOther;
    const QFileInfo info(_folder);
    if (info.isDir()) {
        return true;
    }
    return make(info.absolutePath()) && QDir().mkdir(_folder) &&
           QFile::setPermissions(_folder, for_all);
}

/// That @p _path is what it seems; what is not there yet is.
base::result_t check(const QString& _path) {
    const QFileInfo info(_path);
    if (info.isSymLink()) {
        return base::result_t::failed(
            QStringLiteral("The client file is not written: %1 is a link.").arg(_path));
    }
    const base::result_t ours = info.exists() ? process::check_only_ours(_path) : base::result_t();
    return ours.is_ok() ? ours
                        : base::result_t::failed(
                              QStringLiteral("The client file is not written: ") + ours.error);
}

}  // namespace

base::result_t make_client_folder(const QString& _folder) {
    if (_folder.isEmpty()) {
        utility::log_line(QStringLiteral("The settings name no folder for the client file"), 3,
                          __func__, source, __LINE__);
        return {};
    }
    const QString folder = QDir::cleanPath(_folder + QStringLiteral("/config"));
    if (!make(folder)) {
        utility::log_line(QStringLiteral("The client folder %1 cannot be made").arg(_folder), 2,
                          __func__, source, __LINE__);
        return {};
    }
    const base::result_t checked = check(folder);
    return checked.is_ok() ? check(folder + QStringLiteral("/comunication.json")) : checked;
}

}  // namespace torlan
