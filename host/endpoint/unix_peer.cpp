#include "endpoint/unix_peer.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QFile>
#include <cstring>

#include "process/socket_peer.h"

namespace comunication {

std::optional<pid_t> process_behind(int _socket) {
    const auto peer = process::peer_of(_socket);
    return peer && peer->process > 0 ? std::optional(peer->process) : std::nullopt;
}

std::optional<pid_t> listening_process(const QString& _path) {
    const QByteArray path = QFile::encodeName(_path);
    sockaddr_un address{};
    if (path.size() >= qsizetype(sizeof address.sun_path)) {
        return {};
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket < 0) {
        return {};
    }
    const bool connected =
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    const auto process = connected ? process_behind(socket) : std::nullopt;
    ::close(socket);
    return process;
}

}  // namespace comunication
