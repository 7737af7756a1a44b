#include "process/held_folder_lock_t.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace process {

namespace {

QString lock_in(const QString& _folder) {
    return _folder + QStringLiteral("/.owner.lock");
}

bool is_own_folder(const QString& _folder) {
    struct stat status = {};
    return ::lstat(QFile::encodeName(_folder).constData(), &status) == 0 &&
           S_ISDIR(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

/// Nobody holds the lock in it.
bool is_left(const QString& _folder) {
    const int lock = ::open(QFile::encodeName(lock_in(_folder)).constData(),
                            O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (lock < 0) {
        return false;
    }
    const bool left = ::flock(lock, LOCK_EX | LOCK_NB) == 0;
    ::close(lock);
    return left;
}

}  // namespace

bool held_folder_lock_t::take(const QString& _folder) {
    release();
    // It has its name only when it is held, so that nobody finds it free.
    const QByteArray early = QFile::encodeName(lock_in(_folder) + QStringLiteral(".new"));
    descriptor = ::open(early.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    return descriptor >= 0 && ::flock(descriptor, LOCK_EX | LOCK_NB) == 0 &&
           std::rename(early.constData(), QFile::encodeName(lock_in(_folder)).constData()) == 0;
}

void held_folder_lock_t::release() {
    if (descriptor >= 0) {
        ::close(std::exchange(descriptor, -1));
    }
}

void held_folder_lock_t::remove_left(const QString& _parent, const QString& _prefix) {
    const QStringList names =
        QDir(_parent).entryList({_prefix + QLatin1Char('*')}, QDir::Dirs | QDir::NoSymLinks);
    for (const QString& name : names) {
        const QString folder = _parent + QLatin1Char('/') + name;
        if (is_own_folder(folder) && is_left(folder)) {
            std::error_code ignored;
            std::filesystem::remove_all(QFile::encodeName(folder).toStdString(), ignored);
        }
    }
}

}  // namespace process
