#include "control/control_client_t.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QJsonDocument>
#include <QThread>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "base/json_text.h"
#include "control/control_place_t.h"
#include "control/protocol.h"
#include "process/holder_text.h"
#include "process/socket_peer.h"

namespace control {

using base::result_of_t;
using base::result_t;
using process::file_lock_t;

namespace {

constexpr unsigned long try_again_ms = 20;

int connected(const control_place_t& _place) {
    const int made = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const sockaddr_un address = _place.address();
    if (made >= 0 &&
        ::connect(made, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int reason = errno;
        ::close(made);
        errno = reason;
        return -1;
    }
    return made;
}

}  // namespace

control_client_t::control_client_t(const QString& _folder)
    : folder(_folder), lock(QDir(_folder).filePath(lock_name())) {}

control_client_t::~control_client_t() {
    close();
}

void control_client_t::close() {
    if (socket >= 0) {
        ::close(std::exchange(socket, -1));
    }
    received.clear();
    over = false;
}

result_of_t<bool> control_client_t::has_server() {
    switch (lock.look()) {
        case file_lock_t::state_t::free:
            return false;
        case file_lock_t::state_t::failed:
            return result_t::failed(
                QStringLiteral("nobody can see here whether a server runs on %1.").arg(folder));
        default:
            return true;
    }
}

result_t control_client_t::ask(const QJsonObject& _question, const QDeadlineTimer& _limit) {
    close();
    result_t result = connect(_limit);
    if (result.is_ok()) {
        result = judge();
    }
    if (result.is_ok()) {
        QJsonObject question = _question;
        question.insert(QStringLiteral("version"), version);
        result = send(base::json_to_text(question) + '\n', _limit);
    }
    if (!result.is_ok()) {
        close();
    }
    return result;
}

result_t control_client_t::connect(const QDeadlineTimer& _limit) {
    const control_place_t place(folder);
    if (!place.owner()) {
        return result_t::failed(QStringLiteral("there is no folder %1.").arg(folder));
    }
    // It may be about to listen, or have too much to do to take another connection.
    while ((socket = connected(place)) < 0) {
        if (errno != ENOENT && errno != ECONNREFUSED && errno != EAGAIN) {
            return result_t::failed(
                QStringLiteral("its control socket in %1 cannot be reached: %2.")
                    .arg(folder, qt_error_string(errno)));
        }
        if (_limit.hasExpired()) {
            return silence();
        }
        if (lock.look() == file_lock_t::state_t::free) {
            return result_t::failed(QStringLiteral("no server runs on %1.").arg(folder));
        }
        QThread::msleep(try_again_ms);
    }
    return {};
}

result_t control_client_t::judge() const {
    const control_place_t place(folder);
    const auto peer = process::peer_of(socket);
    const bool is_known = peer && (peer->user == 0 || place.owner() == peer->user);
    file_lock_t held(QDir(folder).filePath(lock_name()));
    if (is_known && held.look() == file_lock_t::state_t::held &&
        held.holder() == qint64(peer->process)) {
        return {};
    }
    return result_t::failed(
        QStringLiteral("another process than the server listens on the control socket in %1.")
            .arg(folder));
}

result_t control_client_t::silence() const {
    file_lock_t held(QDir(folder).filePath(lock_name()));
    static_cast<void>(held.look());
    return result_t::failed(
        QStringLiteral("the server, %1, does not answer.").arg(process::holder_text(held)));
}

bool control_client_t::wait(short _events, const QDeadlineTimer& _limit) const {
    pollfd one{socket, _events, 0};
    for (;;) {
        const int left =
            _limit.isForever() ? -1 : int(std::min<qint64>(_limit.remainingTime(), 60'000));
        const int ready = ::poll(&one, 1, left);
        if (ready > 0) {
            return true;
        }
        if ((ready == 0 && _limit.hasExpired()) || (ready < 0 && errno != EINTR)) {
            return false;
        }
    }
}

result_t control_client_t::send(const QByteArray& _text, const QDeadlineTimer& _limit) const {
    qsizetype sent = 0;
    while (sent < _text.size()) {
        const ssize_t now = ::send(socket, _text.constData() + sent,
                                   std::size_t(_text.size() - sent), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (now > 0) {
            sent += now;
        } else if (now < 0 && errno != EAGAIN && errno != EINTR) {
            return result_t::failed(QStringLiteral("the server turns questions away."));
        } else if (!wait(POLLOUT, _limit)) {
            return silence();
        }
    }
    return {};
}

result_t control_client_t::receive(const QDeadlineTimer& _limit) {
    if (!wait(POLLIN, _limit)) {
        return silence();
    }
    char bytes[16 * 1024];
    const ssize_t came = ::recv(socket, bytes, sizeof bytes, MSG_DONTWAIT);
    if (came > 0) {
        received.append(bytes, qsizetype(came));
        return received.size() <= longest_line
                   ? result_t()
                   : result_t::failed(QStringLiteral("the server's answer is too long."));
    }
    over = came == 0 || (errno != EAGAIN && errno != EINTR);
    return over ? result_t::failed(QStringLiteral("the server has closed the connection."))
                : result_t();
}

result_of_t<QJsonObject> control_client_t::next(const QDeadlineTimer& _limit) {
    qsizetype end = -1;
    while ((end = received.indexOf('\n')) < 0) {
        if (const result_t more = receive(_limit); !more.is_ok()) {
            return more;
        }
    }
    const QJsonObject line = QJsonDocument::fromJson(received.left(end)).object();
    received.remove(0, end + 1);
    if (line.value(QLatin1String("version")) != version) {
        return result_t::failed(QStringLiteral("the server is of another version."));
    }
    const QString error = line.value(QLatin1String("error")).toString();
    if (!error.isEmpty()) {
        return result_t::failed(error);
    }
    return line;
}

}  // namespace control
