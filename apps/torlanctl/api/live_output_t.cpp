#include "api/live_output_t.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

namespace torlan {

namespace {

constexpr qsizetype most_waiting = 4 << 20;

bool is_pipe(int _descriptor) {
    struct stat status {};
    return ::fstat(_descriptor, &status) == 0 &&
           (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

/// What poll() says of it now.
int state_of(int _descriptor, short _events) {
    pollfd one{_descriptor, _events, 0};
    return ::poll(&one, 1, 0) > 0 ? one.revents : 0;
}

}  // namespace

live_output_t::live_output_t(int _descriptor, QObject* _parent)
    : QObject(_parent),
      descriptor(_descriptor),
      room(_descriptor, QSocketNotifier::Write),
      reader(_descriptor, QSocketNotifier::Read) {
    room.setEnabled(false);
    reader.setEnabled(is_pipe(_descriptor));
    connect(&room, &QSocketNotifier::activated, this, &live_output_t::write);
    connect(&reader, &QSocketNotifier::activated, this, &live_output_t::look_for_reader);
}

live_output_t::~live_output_t() {
    write();
}

void live_output_t::add(const QByteArray& _lines) {
    if (waiting.size() + _lines.size() > most_waiting) {
        missing += _lines.count('\n');
        return;
    }
    waiting += _lines;
    room.setEnabled(!waiting.isEmpty());
}

void live_output_t::look_for_reader() {
    reader.setEnabled(false);
    if ((state_of(descriptor, POLLIN) & (POLLERR | POLLHUP)) != 0) {
        end({});
    }
}

void live_output_t::end(const QString& _error) {
    room.setEnabled(false);
    reader.setEnabled(false);
    waiting.clear();
    Q_EMIT ended(_error);
}

void live_output_t::write() {
    // Not more at once than a pipe with room takes without waiting.
    while (!waiting.isEmpty() && (state_of(descriptor, POLLOUT) & ~POLLNVAL) != 0) {
        const ssize_t written = ::write(descriptor, waiting.constData(),
                                        std::size_t(std::min<qsizetype>(waiting.size(), PIPE_BUF)));
        if (written < 0 && errno != EINTR && errno != EAGAIN) {
            end(errno == EPIPE ? QString() : qt_error_string(errno));
            return;
        }
        waiting.remove(0, std::max<ssize_t>(written, 0));
    }
    room.setEnabled(!waiting.isEmpty());
    if (waiting.isEmpty() && missing > 0) {
        Q_EMIT left_out(std::exchange(missing, 0));
    }
}

}  // namespace torlan
