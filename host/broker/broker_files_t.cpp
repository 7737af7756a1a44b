#include "broker/broker_files_t.h"

#include <pwd.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace broker {

namespace {

/// Root's temporary folder may be closed to the broker's account; the run-time folder is not.
QString parent_folder() {
    const QString run = QStringLiteral("/run");
    return ::geteuid() == 0 && QFileInfo(run).isWritable() ? run : QDir::tempPath();
}

broker_result_t failure(const QString& _path) {
    return {QStringLiteral("Cannot write the broker's files at %1: %2.")
                .arg(_path, QString::fromLocal8Bit(std::strerror(errno)))};
}

}  // namespace

broker_result_t broker_files_t::create(const QString& _system_account) {
    account.reset();
    if (::geteuid() == 0) {
        const passwd* const entry = ::getpwnam(_system_account.toLocal8Bit().constData());
        if (entry == nullptr) {
            return {QStringLiteral("There is no system account \"%1\" to run the broker as.")
                        .arg(_system_account)};
        }
        account = system_account_t{entry->pw_uid, entry->pw_gid};
    }
    folder =
        std::make_unique<QTemporaryDir>(parent_folder() + QStringLiteral("/torlan-broker-XXXXXX"));
    if (!folder->isValid()) {
        return failure(parent_folder());
    }
    return hand_over(folder->path());
}

broker_result_t broker_files_t::write(const QString& _name, const QByteArray& _text) const {
    const QString target = path(_name);
    QTemporaryFile file(target + QStringLiteral(".XXXXXX"));
    if (!file.open() || file.write(_text) != _text.size() || !file.flush()) {
        return failure(target);
    }
    if (const broker_result_t handed = hand_over(file.fileName()); !handed.is_ok()) {
        return handed;
    }
    if (std::rename(QFile::encodeName(file.fileName()).constData(),
                    QFile::encodeName(target).constData()) != 0) {
        return failure(target);
    }
    file.setAutoRemove(false);
    return {};
}

broker_result_t broker_files_t::hand_over(const QString& _path) const {
    if (account && ::chown(QFile::encodeName(_path).constData(), account->user, account->group)) {
        return failure(_path);
    }
    return {};
}

}  // namespace broker
