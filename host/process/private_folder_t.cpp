#include "process/private_folder_t.h"

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace process {

using base::result_t;

namespace {

/// Root's temporary folder may be closed to the child's account; the run-time folder is not.
QString parent_folder() {
    const QString run = QStringLiteral("/run");
    return ::geteuid() == 0 && QFileInfo(run).isWritable() ? run : QDir::tempPath();
}

}  // namespace

result_t private_folder_t::create(const QString& _system_account) {
    account.reset();
    if (::geteuid() == 0) {
        const passwd* const entry = ::getpwnam(_system_account.toLocal8Bit().constData());
        if (entry == nullptr) {
            return result_t::failed(
                QStringLiteral("There is no system account \"%1\" to run the %2 as.")
                    .arg(_system_account, child));
        }
        account = system_account_t{entry->pw_uid, entry->pw_gid};
    }
    folder = std::make_unique<QTemporaryDir>(parent_folder() +
                                             QStringLiteral("/torlan-%1-XXXXXX").arg(child));
    if (!folder->isValid()) {
        return failure(parent_folder());
    }
    return hand_over(folder->path());
}

result_t private_folder_t::write(const QString& _name, const QByteArray& _text) const {
    const QString target = path(_name);
    QTemporaryFile file(target + QStringLiteral(".XXXXXX"));
    if (!file.open() || file.write(_text) != _text.size() || !file.flush()) {
        return failure(target);
    }
    if (const result_t handed = hand_over(file.fileName()); !handed.is_ok()) {
        return handed;
    }
    if (std::rename(QFile::encodeName(file.fileName()).constData(),
                    QFile::encodeName(target).constData()) != 0) {
        return failure(target);
    }
    file.setAutoRemove(false);
    return {};
}

result_t private_folder_t::failure(const QString& _path) const {
    const QString reason = QString::fromLocal8Bit(std::strerror(errno));
    return result_t::failed(
        QStringLiteral("Cannot write the %1's files at %2: %3.").arg(child, _path, reason));
}

result_t private_folder_t::hand_over(const QString& _path) const {
    if (account && ::chown(QFile::encodeName(_path).constData(), account->user, account->group)) {
        return failure(_path);
    }
    return {};
}

}  // namespace process
