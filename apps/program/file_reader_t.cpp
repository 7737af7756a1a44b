#include "program/file_reader_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <QEventLoop>
#include <QFile>
#include <QSocketNotifier>
#include <cerrno>

namespace torlan {

namespace {

constexpr qsizetype piece_bytes = 64 * 1024;

QString unreadable() {
    return QStringLiteral("cannot be read: ") + qt_error_string(errno);
}

}  // namespace

file_reader_t::file_reader_t(QString _path, qint64 _max_bytes, QObject* _parent)
    : QObject(_parent), path(std::move(_path)), max_bytes(_max_bytes) {}

file_reader_t::~file_reader_t() {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

base::result_of_t<QByteArray> file_reader_t::read() {
    // A pipe without a writer would block the opening.
    descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return failed(unreadable());
    }
    QByteArray bytes;
    QByteArray piece(piece_bytes, Qt::Uninitialized);
    while (wait()) {
        const ssize_t count = ::read(descriptor, piece.data(), piece_bytes);
        if (count == 0) {
            return bytes;
        }
        // Another reader of the pipe may have been faster.
        if (count < 0 && errno != EAGAIN) {
            return failed(unreadable());
        }
        bytes.append(piece.constData(), qMax<ssize_t>(count, 0));
        if (bytes.size() > max_bytes) {
            return failed(QStringLiteral("is larger than %1 MiB").arg(max_bytes >> 20));
        }
    }
    return failed(QStringLiteral("was not read to its end"));
}

base::result_t file_reader_t::failed(const QString& _what) const {
    return base::result_t::failed(path + QStringLiteral(": ") + _what);
}

// Until there is something to read, its end included; a pipe that nobody has opened for writing yet
// has neither. False: given up.
bool file_reader_t::wait() const {
    if (is_given_up) {
        return false;
    }
    QEventLoop loop;
    QSocketNotifier notifier(descriptor, QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, &loop, &QEventLoop::quit);
    connect(this, &file_reader_t::given_up, &loop, &QEventLoop::quit);
    loop.exec();
    return !is_given_up;
}

void file_reader_t::give_up() {
    is_given_up = true;
    Q_EMIT given_up();
}

}  // namespace torlan
