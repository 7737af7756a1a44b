#pragma once

#include <sys/types.h>

#include <optional>

namespace process {

/// Who is at the other end of a unix socket, as the kernel knew it when that end connected or began
/// to listen.
struct socket_peer_t {
    pid_t process;  ///< 0: of another container
    uid_t user;
};

/// Nothing: another kind of socket, or one that is not connected.
std::optional<socket_peer_t> peer_of(int _socket);

}  // namespace process
