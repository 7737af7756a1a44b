#include "home_t.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstring>

#include "first_settings.h"
#include "process/holder_text.h"
#include "process/restored_folder_t.h"
#include "process/trusted_path.h"

namespace torlan {

using base::result_t;
using process::file_lock_t;

namespace {

/// A server saves and ends its broker meanwhile.
constexpr std::chrono::seconds end_takes(30);

result_t failure(const QString& _sentence) {
    return result_t::failed(_sentence.arg(QString::fromLocal8Bit(std::strerror(errno))));
}

/// By the folder itself, not by its path.
bool give(const QString& _folder, const passwd& _account) {
    const int opened = ::open(QFile::encodeName(_folder).constData(),
                              O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    const bool given = opened >= 0 && ::fchown(opened, _account.pw_uid, _account.pw_gid) == 0;
    if (opened >= 0) {
        ::close(opened);
    }
    return given;
}

}  // namespace

home_t::home_t(const QString& _path, QObject* _parent)
    : QObject(_parent), path(_path), lock(file(QStringLiteral("supervisor.lock"))) {}

result_t home_t::make(const QString& _account) {
    if (QFileInfo(path).isDir()) {
        return {};
    }
    const QString above = QFileInfo(path).path();
    // Other users' programs may reach the client file in it, by its name; they cannot list the
    // folder, and everything else in it is readable for its owner only.
    if (!QDir().mkpath(above) || ::mkdir(QFile::encodeName(path).constData(), 0711) != 0 ||
        ::chmod(QFile::encodeName(path).constData(), 0711) != 0) {
        return QFileInfo(path).isDir()
                   ? result_t()  // another one was faster
                   : failure(QStringLiteral("The folder %1 cannot be made: %2.").arg(path));
    }
    made_folder = true;
    if (_account.isEmpty() || ::geteuid() != 0) {
        return {};
    }
    const passwd* const account = ::getpwnam(_account.toLocal8Bit().constData());
    return account != nullptr && give(path, *account)
               ? result_t()
               : failure(QStringLiteral("The folder %1 cannot be given to %2: %3.")
                             .arg(path, _account));
}

result_t home_t::open(const QString& _drivers) {
    if (const result_t ours = process::check_only_ours(path); !ours.is_ok()) {
        return ours;
    }
    const file_lock_t::state_t state = lock.take();
    if (state == file_lock_t::state_t::held) {
        made_folder = false;  // it is theirs
        return result_t::failed(
            QStringLiteral("The folder %1 is in use by %2.").arg(path, process::holder_text(lock)));
    }
    if (state != file_lock_t::state_t::ours) {
        return failure(QStringLiteral("The folder %1 cannot be written: %2.").arg(path));
    }
    if (const result_t ended = end_left_programs(); !ended.is_ok()) {
        return ended;
    }
    if (const result_t finished = process::restored_folder_t(path).finish(); !finished.is_ok()) {
        return finished;
    }
    return write_settings(_drivers);
}

result_t home_t::end_left_programs() {
    for (const QString& name :
         {QStringLiteral("torlan.lock"), QStringLiteral("settings.json.lock")}) {
        file_lock_t left(file(name));
        if (left.look() != file_lock_t::state_t::held) {
            continue;
        }
        const QString who = process::holder_text(left);
        Q_EMIT ending(QStringLiteral("%1 still uses the folder %2 although the program that "
                                     "supervised it has gone; it is ended")
                          .arg(who, path));
        if (!left.end_holder(end_takes)) {
            return result_t::failed(
                QStringLiteral("The folder %1 is in use by %2, which cannot be ended from here.")
                    .arg(path, who));
        }
    }
    return {};
}

result_t home_t::write_settings(const QString& _drivers) {
    if (QFileInfo::exists(settings())) {
        return {};
    }
    // Complete or not there; the disk has it before the name is.
    QSaveFile next(settings());
    const QByteArray text = first_settings(path, _drivers);
    if (!next.open(QIODevice::WriteOnly) ||
        !next.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) ||
        next.write(text) != text.size() || !next.commit()) {
        return result_t::failed(QStringLiteral("The settings cannot be written to %1: %2.")
                                    .arg(settings(), next.errorString()));
    }
    made_settings = true;
    return {};
}

void home_t::take_back() {
    if (made_folder) {
        QDir(path).removeRecursively();
    } else if (made_settings) {
        for (const QString& name :
             {QStringLiteral("settings.json"), QStringLiteral("settings.json.lock"),
              QStringLiteral("torlan.lock"), QStringLiteral("control.sock"),
              QStringLiteral("broker.lock"), QStringLiteral("supervisor.lock"),
              QStringLiteral("settings-audit.log"), QStringLiteral("knxd.lock"),
              QStringLiteral("knxd.socket")}) {
            QFile::remove(file(name));
        }
    }
    made_folder = made_settings = false;
}

}  // namespace torlan
