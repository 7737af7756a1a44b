#include "process/socket_peer.h"

#include <sys/socket.h>

namespace process {

std::optional<socket_peer_t> peer_of(int _socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    if (::getsockopt(_socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 ||
        peer.uid == uid_t(-1)) {
        return std::nullopt;
    }
    return socket_peer_t{peer.pid, peer.uid};
}

}  // namespace process
