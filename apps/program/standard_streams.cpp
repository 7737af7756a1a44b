#include "program/standard_streams.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
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

namespace {

bool is_patient = true;

/// Not more at once than a pipe takes without waiting when there is room at all.
void write_as_it_flows(int _descriptor, QByteArray _bytes) {
    constexpr int patience_ms = 1000;
    pollfd output = {_descriptor, POLLOUT, 0};
    while (!_bytes.isEmpty() && ::poll(&output, 1, patience_ms) > 0) {
        const ssize_t written = ::write(_descriptor, _bytes.constData(),
                                        size_t(qMin<qsizetype>(_bytes.size(), PIPE_BUF)));
        if (written < 0 && errno != EINTR) {
            return;
        }
        _bytes.remove(0, qMax<qsizetype>(written, 0));
    }
}

}  // namespace

void wait_for_no_reader() {
    is_patient = false;
}

void write_text(std::FILE* _stream, const QString& _text) {
    const QByteArray bytes = _text.toUtf8();
    if (!is_patient) {
        std::fflush(_stream);
        write_as_it_flows(::fileno(_stream), bytes);
        return;
    }
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), _stream);
    std::fflush(_stream);
}

}  // namespace torlan
