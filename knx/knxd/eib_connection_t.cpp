#include "knx/knxd/eib_connection_t.h"

#include <eibclient.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace knx {

namespace {

/// The library writes without MSG_NOSIGNAL, and knxd may have gone.
void block_broken_pipe() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

/// A cable that is pulled says nothing: the kernel has to ask. A link without an answer is lost
/// after 10 + 3 x 5 s, with something unsent after 20 s. A unix socket refuses all but the first.
void notice_silence(int _descriptor) {
    const auto set = [_descriptor](int _level, int _option, int _value) {
        setsockopt(_descriptor, _level, _option, &_value, sizeof _value);
    };
    set(SOL_SOCKET, SO_KEEPALIVE, 1);
    set(IPPROTO_TCP, TCP_KEEPIDLE, 10);
    set(IPPROTO_TCP, TCP_KEEPINTVL, 5);
    set(IPPROTO_TCP, TCP_KEEPCNT, 3);
    set(IPPROTO_TCP, TCP_USER_TIMEOUT, 20'000);
}

using buffer_t = std::array<uint8_t, 512>;

QByteArray bytes_of(const buffer_t& _buffer, int _size) {
    return QByteArray(reinterpret_cast<const char*>(_buffer.data()), _size);
}

}  // namespace

std::unique_ptr<eib_connection_t> eib_connection_t::open(const QString& _url) {
    block_broken_pipe();
    _EIBConnection* const made = EIBSocketURL(_url.toLocal8Bit().constData());
    if (made == nullptr) {
        return nullptr;
    }
    notice_silence(EIB_Poll_FD(made));
    return std::unique_ptr<eib_connection_t>(new eib_connection_t(made));
}

eib_connection_t::~eib_connection_t() {
    EIBClose(connection);
}

bool eib_connection_t::open_group_socket() {
    return EIBOpen_GroupSocket(connection, 0) != -1;
}

int eib_connection_t::descriptor() const {
    return EIB_Poll_FD(connection);
}

eib_connection_t::state_t eib_connection_t::state() const {
    switch (EIB_Poll_Complete(connection)) {
        case 0:
            return state_t::nothing;
        case 1:
            return state_t::telegram;
        default:
            return state_t::lost;
    }
}

std::optional<eib_connection_t::received_t> eib_connection_t::take() {
    buffer_t buffer{};
    received_t received;
    const int size = EIBGetGroup_Src(connection, int(buffer.size()), buffer.data(),
                                     &received.source, &received.destination);
    if (size < 0) {
        return std::nullopt;
    }
    received.apdu = bytes_of(buffer, size);
    return received;
}

bool eib_connection_t::send(group_address_t _destination, const QByteArray& _apdu) {
    return EIBSendGroup(connection, _destination.raw(), int(_apdu.size()),
                        reinterpret_cast<const uint8_t*>(_apdu.constData())) != -1;
}

eib_connection_t::cached_t eib_connection_t::read_cache(group_address_t _address,
                                                        received_t* _found) {
    buffer_t buffer{};
    errno = 0;
    const int size = EIB_Cache_Read(connection, _address.raw(), &_found->source, int(buffer.size()),
                                    buffer.data());
    if (size < 0) {
        return errno == ENOENT ? cached_t::unknown : cached_t::no_cache;
    }
    _found->destination = _address.raw();
    _found->apdu = bytes_of(buffer, size);
    return cached_t::known;
}

}  // namespace knx
