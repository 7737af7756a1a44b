#include "settings_file_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <cerrno>
#include <cstdio>

#include "base/sync_path.h"
#include "process/holder_text.h"

namespace torlan {

namespace {

/// A file descriptor that closes itself.
class descriptor_t {
 public:
    descriptor_t(const QString& _path, int _flags)
        : descriptor(::open(QFile::encodeName(_path).constData(), _flags | O_CLOEXEC, 0600)) {}
    ~descriptor_t() {
        if (descriptor >= 0) {
            ::close(descriptor);
        }
    }
    Q_DISABLE_COPY_MOVE(descriptor_t)

    explicit operator bool() const { return descriptor >= 0; }
    bool sync() const { return ::fsync(descriptor) == 0; }
    bool restrict_to_owner() const { return ::fchmod(descriptor, 0600) == 0; }
    bool write(const QByteArray& _text) const {
        qsizetype done = 0;
        while (done < _text.size()) {
            const ssize_t count =
                ::write(descriptor, _text.constData() + done, size_t(_text.size() - done));
            if (count < 0 && errno != EINTR) {
                return false;
            }
            done += qMax<ssize_t>(count, 0);
        }
        return true;
    }

 private:
    const int descriptor;
};

base::result_t failed(const QString& _what, const QString& _path) {
    return base::result_t::failed(
        QStringLiteral("%1 %2: %3").arg(_what, _path, qt_error_string(errno)));
}

bool write_whole(const QString& _path, const QByteArray& _text) {
    const descriptor_t file(_path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    return file && file.restrict_to_owner() && file.write(_text) && file.sync();
}

}  // namespace

base::result_t settings_file_t::lock() {
    const QString path = file + QStringLiteral(".lock");
    held = std::make_unique<process::file_lock_t>(path);
    switch (held->take()) {
        case process::file_lock_t::state_t::held:
            return base::result_t::failed(QStringLiteral("another server uses %1: %2")
                                              .arg(file, process::holder_text(*held)));
        case process::file_lock_t::state_t::failed:
            return failed(QStringLiteral("cannot write"), path);
        default:
            return {};
    }
}

base::result_t settings_file_t::open(const QString& _path) {
    // A link stays a link: the file behind it is replaced.
    const QString target = QFileInfo(_path).canonicalFilePath();
    file = target.isEmpty() ? QFileInfo(_path).absoluteFilePath() : target;
    if (const base::result_t locked = lock(); !locked.is_ok()) {
        return locked;
    }
    created = !QFileInfo::exists(file);
    if (created) {
        return write("{}\n");
    }
    const base::result_t readable = read();
    return readable.is_ok() ? check_writable() : readable;
}

base::result_of_t<QJsonObject> settings_file_t::read() const {
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly)) {
        return base::result_t::failed(
            QStringLiteral("cannot read %1: %2").arg(file, source.errorString()));
    }
    const QByteArray text = source.read(max_bytes + 1);
    if (text.size() > max_bytes) {
        return base::result_t::failed(
            QStringLiteral("%1 is larger than %2 bytes").arg(file, QString::number(max_bytes)));
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(text, &parse);
    if (!document.isObject()) {
        return base::result_t::failed(
            QStringLiteral("%1 is not a JSON object: %2, at byte %3")
                .arg(file, parse.errorString(), QString::number(parse.offset)));
    }
    return document.object();
}

// A folder that cannot take a new file shows at the start, not at the first write.
base::result_t settings_file_t::check_writable() const {
    const QString next = file + QStringLiteral(".new");
    if (!write_whole(next, {})) {
        return failed(QStringLiteral("cannot write"), next);
    }
    ::unlink(QFile::encodeName(next).constData());
    if (::chmod(QFile::encodeName(file).constData(), 0600) != 0) {
        return failed(QStringLiteral("cannot restrict"), file);
    }
    return {};
}

base::result_t settings_file_t::write(const QByteArray& _text) const {
    const QString next = file + QStringLiteral(".new");
    base::result_t replaced;
    if (!write_whole(next, _text)) {
        replaced = failed(QStringLiteral("cannot write"), next);
    } else if (::rename(QFile::encodeName(next).constData(), QFile::encodeName(file).constData()) !=
               0) {
        replaced = failed(QStringLiteral("cannot replace"), file);
    }
    if (!replaced.is_ok()) {
        ::unlink(QFile::encodeName(next).constData());
        return replaced;
    }
    const QString folder_path = QFileInfo(file).absolutePath();
    return base::sync_path(folder_path) ? base::result_t()
                                        : failed(QStringLiteral("cannot sync"), folder_path);
}

}  // namespace torlan
