#include "program/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace torlan {

void secure_standard_streams() {
    for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            // Takes the lowest free number, which is this one; writing to it fails.
            (void)open("/dev/null", O_RDONLY);
        }
    }
    std::signal(SIGPIPE, SIG_IGN);
}

base::result_t write_output(const QByteArray& _bytes) {
    const auto size = static_cast<size_t>(_bytes.size());
    if (std::fwrite(_bytes.constData(), 1, size, stdout) != size || std::fflush(stdout) != 0) {
        return base::result_t::failed(
            QStringLiteral("Standard output: %1.").arg(qt_error_string(errno)));
    }
    return {};
}

void write_text(std::FILE* _stream, const QString& _text) {
    const QByteArray bytes = _text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), _stream);
    std::fflush(_stream);
}

}  // namespace torlan
