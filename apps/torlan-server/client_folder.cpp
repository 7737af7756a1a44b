#include "client_folder.h"

#include <QDir>
#include <QFileInfo>

#include "logs/log_line.h"

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

}  // namespace

void make_client_folder(const QString& _folder) {
    if (_folder.isEmpty()) {
        utility::log_line(QStringLiteral("The settings name no folder for the client file"), 3,
                          __func__, source, __LINE__);
    } else if (!make(QDir::cleanPath(_folder + QStringLiteral("/config")))) {
        utility::log_line(QStringLiteral("The client folder %1 cannot be made").arg(_folder), 2,
                          __func__, source, __LINE__);
    }
}

}  // namespace torlan
