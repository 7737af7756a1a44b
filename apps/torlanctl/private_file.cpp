#include "private_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstring>

namespace torlan {

using base::result_t;

namespace {

result_t failure(const QString& _path) {
    const QString why = QString::fromLocal8Bit(std::strerror(errno));
    return result_t::failed(QStringLiteral("%1: cannot be written: %2").arg(_path, why));
}

}  // namespace

result_t write_private_file(const QString& _path, const QByteArray& _bytes) {
    const QByteArray path = QFile::encodeName(_path);
    const int descriptor =
        ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return failure(_path);
    }
    QFile file;
    const bool written = file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered) &&
                         file.write(_bytes) == _bytes.size() && ::fsync(descriptor) == 0;
    const result_t result = written ? result_t() : failure(_path);
    file.close();
    if (::close(descriptor) != 0 || !written) {
        ::unlink(path.constData());
    }
    return result;
}

}  // namespace torlan
