#include "kit/free_port.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>

namespace kit {

namespace {

constexpr int first = 20000;
constexpr int count = 10000;

/// Takes a name that stands for the port and that the system takes back when the process ends, in
/// whatever way. Names of this kind are shared by all users and have no file.
bool reserve(int _port) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    std::snprintf(name.sun_path + 1, sizeof(name.sun_path) - 1, "torlan-test-port-%d", _port);
    const int holder = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (bind(holder, reinterpret_cast<sockaddr*>(&name), sizeof(name)) == 0) {
        return true;  // and stays open
    }
    close(holder);
    return false;
}

/// Whether a listener would get it, as programs ask that may follow a former one at once.
bool is_free(int _port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<in_port_t>(_port));
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int on = 1;
    setsockopt(probe, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    const bool bound = bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0;
    close(probe);
    return bound;
}

}  // namespace

quint16 free_port() {
    for (int tried = 0; tried < count; ++tried) {
        const int port = first + (getpid() + tried) % count;
        if (reserve(port) && is_free(port)) {
            return static_cast<quint16>(port);
        }
    }
    return 0;
}

}  // namespace kit
