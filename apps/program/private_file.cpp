#include "program/private_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

#include "base/random_hex.h"
#include "base/sync_path.h"

namespace torlan {

using base::result_t;

namespace {

result_t failure(const QString& _path) {
    const QString why = QString::fromLocal8Bit(std::strerror(errno));
    return result_t::failed(QStringLiteral("%1: cannot be written: %2").arg(_path, why));
}

/// Beside the file, where a link to it can be made.
QByteArray temporary_path(const QString& _path) {
    const QFileInfo file(_path);
    return QFile::encodeName(file.path() + QStringLiteral("/.") + file.fileName() + u'.' +
                             base::random_hex(8));
}

bool write_whole(int _descriptor, const QByteArray& _bytes) {
    QFile file;
    return file.open(_descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered) &&
           file.write(_bytes) == _bytes.size() && ::fsync(_descriptor) == 0;
}

}  // namespace

result_t write_private_file(const QString& _path, const QByteArray& _bytes) {
    const QByteArray temporary = temporary_path(_path);
    const int descriptor =
        ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return failure(_path);
    }
    // A link, not a new name: it replaces nothing.
    const bool is_written =
        write_whole(descriptor, _bytes) &&
        ::link(temporary.constData(), QFile::encodeName(_path).constData()) == 0 &&
        base::sync_path(QFileInfo(_path).absolutePath());
    const result_t result = is_written ? result_t() : failure(_path);
    ::close(descriptor);
    ::unlink(temporary.constData());
    return result;
}

}  // namespace torlan
