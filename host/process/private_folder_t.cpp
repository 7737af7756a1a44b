#include "process/private_folder_t.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace process {

using base::result_t;

namespace {

/// Root's temporary folder may be closed to the child's account; the run-time folder is not.
QString parent_folder() {
    const QString run = QStringLiteral("/run");
    return ::geteuid() == 0 && QFileInfo(run).isWritable() ? run : QDir::tempPath();
}

/// A folder that is held open, so that what is done is done to it and to no other.
class held_folder_t {
 public:
    explicit held_folder_t(const QString& _path)
        : descriptor(::open(QFile::encodeName(_path).constData(),
                            O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)) {}
    ~held_folder_t() { ::close(descriptor); }
    Q_DISABLE_COPY_MOVE(held_folder_t)

    bool give(uid_t _user, gid_t _group, mode_t _mode) const {
        return ::fchown(descriptor, _user, _group) == 0 && ::fchmod(descriptor, _mode) == 0;
    }

 private:
    const int descriptor;
};

}  // namespace

private_folder_t::~private_folder_t() {
    remove();
}

void private_folder_t::remove() {
    if (!folder.isEmpty()) {
        // Not Qt's way, which goes by paths: the child's account could exchange what it stands on.
        std::error_code ignored;
        std::filesystem::remove_all(QFile::encodeName(folder).toStdString(), ignored);
        folder.clear();
        lock.release();
    }
}

result_t private_folder_t::create(const QString& _system_account) {
    account.reset();
    remove();
    if (::geteuid() == 0) {
        const passwd* const entry = ::getpwnam(_system_account.toLocal8Bit().constData());
        if (entry == nullptr) {
            return result_t::failed(
                QStringLiteral("There is no system account \"%1\" to run the %2 as.")
                    .arg(_system_account, child));
        }
        account = system_account_t{entry->pw_uid, entry->pw_gid};
    }
    const QString prefix = QStringLiteral("torlan-%1-").arg(child);
    held_folder_lock_t::remove_left(parent_folder(), prefix);
    QTemporaryDir made(parent_folder() + QLatin1Char('/') + prefix + QStringLiteral("XXXXXX"));
    if (!made.isValid()) {
        return failure(parent_folder());
    }
    made.setAutoRemove(false);
    folder = made.path();
    return lock.take(folder) ? make_own() : failure(folder);
}

result_t private_folder_t::make_own() const {
    const QString own = path(QStringLiteral("own"));
    if (::mkdir(QFile::encodeName(own).constData(), 0700) != 0) {
        return failure(own);
    }
    if (account && !(held_folder_t(own).give(account->user, account->group, 0700) &&
                     held_folder_t(folder).give(::geteuid(), account->group, 0710))) {
        return failure(folder);
    }
    return {};
}

result_t private_folder_t::write(const QString& _name, const QByteArray& _text) const {
    const QString target = path(_name);
    QTemporaryFile file(target + QStringLiteral(".XXXXXX"));
    if (!file.open() || file.write(_text) != _text.size() || !file.flush()) {
        return failure(target);
    }
    if (account && (::fchown(file.handle(), ::geteuid(), account->group) != 0 ||
                    ::fchmod(file.handle(), 0640) != 0)) {
        return failure(target);
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

}  // namespace process
