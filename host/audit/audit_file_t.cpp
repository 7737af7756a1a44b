#include "audit/audit_file_t.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "audit/file_name.h"
#include "process/trusted_path.h"

namespace audit {

using base::result_t;

namespace {

QByteArray encoded(const QString& _name, int _age) {
    return QFile::encodeName(file_name(_name, _age));
}

/// The bytes that were written.
qsizetype write_all(int _descriptor, const QByteArray& _bytes) {
    qsizetype done = 0;
    while (done < _bytes.size()) {
        const ssize_t count =
            ::write(_descriptor, _bytes.constData() + done, std::size_t(_bytes.size() - done));
        if (count < 0 && errno != EINTR) {
            break;
        }
        done += qMax<ssize_t>(count, 0);
    }
    return done;
}

bool ends_with_line(int _descriptor, qint64 _size) {
    char last = '\n';
    return _size == 0 || (::pread(_descriptor, &last, 1, _size - 1) == 1 && last == '\n');
}

}  // namespace

audit_file_t::~audit_file_t() {
    close();
}

void audit_file_t::close() {
    for (int* const descriptor : {&file, &folder}) {
        if (*descriptor >= 0) {
            ::close(std::exchange(*descriptor, -1));
        }
    }
}

QString audit_file_t::path() const {
    return QDir(settings.folder).filePath(file_name(settings.name, 0));
}

result_t audit_file_t::failed(const QString& _what) const {
    return result_t::failed(
        QStringLiteral("The audit %1 %2: %3.").arg(path(), _what, qt_error_string(errno)));
}

result_t audit_file_t::open() {
    close();
    result_t result = open_folder();
    if (result.is_ok()) {
        result = open_file();
    }
    if (!result.is_ok()) {
        close();
    }
    return result;
}

result_t audit_file_t::open_folder() {
    if (!QFileInfo::exists(settings.folder)) {
        const auto owner_only =
            QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;
        if (!QDir().mkpath(settings.folder) ||
            !QFile::setPermissions(settings.folder, owner_only)) {
            return failed(QStringLiteral("cannot be made"));
        }
    }
    // What a link leads to, so that what is judged is what is opened.
    const QString real = QFileInfo(settings.folder).canonicalFilePath();
    if (const result_t ours = process::check_only_ours(real); !ours.is_ok()) {
        return ours;
    }
    folder = ::open(QFile::encodeName(real).constData(),
                    O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    return folder < 0 ? failed(QStringLiteral("cannot be opened")) : result_t();
}

result_t audit_file_t::open_file() {
    // A pipe in its place would block the opening.
    const int opened =
        ::openat(folder, encoded(settings.name, 0).constData(),
                 O_RDWR | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (opened < 0) {
        return failed(QStringLiteral("cannot be opened"));
    }
    if (const result_t taken = take_over(opened); !taken.is_ok()) {
        ::close(opened);
        return taken;
    }
    file = opened;
    return {};
}

result_t audit_file_t::take_over(int _descriptor) {
    struct stat status = {};
    if (::fstat(_descriptor, &status) != 0) {
        return failed(QStringLiteral("cannot be looked at"));
    }
    // With another name it is somewhere else, too, where others may read it or it is something
    // else.
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid() || status.st_nlink != 1) {
        return result_t::failed(
            QStringLiteral("The audit %1 is not a file of this program's user alone.").arg(path()));
    }
    if (::fchmod(_descriptor, 0600) != 0) {
        return failed(QStringLiteral("cannot be closed to others"));
    }
    if (::flock(_descriptor, LOCK_EX | LOCK_NB) != 0) {
        return result_t::failed(
            QStringLiteral("The audit %1 is written by another program.").arg(path()));
    }
    size = status.st_size;
    is_cut = !ends_with_line(_descriptor, size);
    return {};
}

bool audit_file_t::is_still_there() const {
    struct stat held = {};
    struct stat there = {};
    return file >= 0 && ::fstat(file, &held) == 0 &&
           ::lstat(QFile::encodeName(path()).constData(), &there) == 0 &&
           held.st_ino == there.st_ino && held.st_dev == there.st_dev;
}

result_t audit_file_t::rotate() {
    for (int age = settings.kept - 1; age >= 0; --age) {
        const QByteArray from = encoded(settings.name, age);
        const QByteArray to = encoded(settings.name, age + 1);
        if (::renameat(folder, from.constData(), folder, to.constData()) != 0 && errno != ENOENT) {
            return failed(QStringLiteral("cannot be set aside"));
        }
    }
    ::close(std::exchange(file, -1));
    return open_file();
}

result_t audit_file_t::write(const QByteArray& _lines) {
    result_t ready = is_still_there() ? result_t() : open();
    if (ready.is_ok() && size > 0 && size + _lines.size() > settings.most_bytes) {
        ready = rotate();
    }
    if (!ready.is_ok()) {
        return ready;
    }
    const QByteArray bytes = is_cut ? '\n' + _lines : _lines;
    const qsizetype done = write_all(file, bytes);
    if (done == bytes.size()) {
        size += done;
        is_cut = false;
        return {};
    }
    const result_t result = failed(QStringLiteral("cannot be written"));
    if (::ftruncate(file, size) != 0) {
        size += done;
        is_cut = true;
    }
    return result;
}

}  // namespace audit
