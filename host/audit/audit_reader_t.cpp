#include "audit/audit_reader_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <cerrno>

#include "audit/file_name.h"
#include "audit/line_text.h"

namespace audit {

using base::result_t;

namespace {

/// No line is longer, whatever its texts are.
constexpr qint64 longest_line = 64 * 1024;
/// A rotation leaves a gap for a moment.
constexpr int most_missing = 2;

}  // namespace

result_t audit_reader_t::open(const QString& _folder, const QString& _name, qint64 _since) {
    // The newest first: what is rotated meanwhile comes twice, and is not missed.
    int missing = 0;
    for (int age = 0; missing < most_missing; ++age) {
        const std::size_t before = held.size();
        const result_t taken = take(QDir(_folder).filePath(file_name(_name, age)), _since);
        if (!taken.is_ok()) {
            return taken;
        }
        missing = std::size_t(held.size()) == before ? missing + 1 : 0;
    }
    return {};
}

result_t audit_reader_t::take(const QString& _path, qint64 _since) {
    const int descriptor = ::open(QFile::encodeName(_path).constData(),
                                  O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    struct stat status = {};
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        const int reason = descriptor < 0 ? errno : EINVAL;
        if (descriptor >= 0) {
            ::close(descriptor);
        }
        return reason == ENOENT
                   ? result_t()
                   : result_t::failed(QStringLiteral("The audit %1 cannot be read: %2.")
                                          .arg(_path, qt_error_string(reason)));
    }
    found = true;
    const std::pair<quint64, quint64> which{status.st_dev, status.st_ino};
    const bool is_known = held.contains(which);
    held.append(which);
    if (is_known || qint64(status.st_mtime) < _since / 1000) {
        ::close(descriptor);
        return {};
    }
    auto file = std::make_unique<QFile>();
    if (!file->open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return result_t::failed(QStringLiteral("The audit %1 cannot be read.").arg(_path));
    }
    files.push_back(std::move(file));
    return {};
}

std::optional<audit_reader_t::line_t> audit_reader_t::next() {
    while (!files.empty()) {
        const QByteArray text = files.back()->readLine(longest_line);
        if (text.isEmpty()) {
            files.pop_back();
            continue;
        }
        if (const auto entry = entry_of(text); entry && text.endsWith('\n')) {
            return line_t{*entry, text};
        }
        not_read += text.trimmed().isEmpty() ? 0 : 1;
    }
    return std::nullopt;
}

}  // namespace audit
