#include "gated_listener_t.h"

#include <sys/socket.h>

#include <utility>

#include "gate/request_gate_t.h"
#include "program/say.h"
#include "program/socket_owner_t.h"
#include "request_guard_t.h"

namespace torlan {

namespace {

/// Whoever connects and is gone, or half gone, is nobody.
std::optional<uid_t> user_of(const QTcpSocket& _socket) {
    return socket_owner_t::of_peer({_socket.localAddress(), _socket.localPort()},
                                   {_socket.peerAddress(), _socket.peerPort()});
}

// Read first: a close with bytes unread may take the answer away. Nothing is kept or waited for.
void turn_away(int _descriptor) {
    char unread[4096];
    const QByteArray answer =
        refusal_answer({403, QStringLiteral("The settings are their own user's and root's")});
    static_cast<void>(::recv(_descriptor, unread, sizeof unread, MSG_DONTWAIT));
    static_cast<void>(::send(_descriptor, answer.constData(), std::size_t(answer.size()),
                             MSG_DONTWAIT | MSG_NOSIGNAL));
}

}  // namespace

bool gated_listener_t::admit(QTcpSocket* _socket) {
    const std::optional<uid_t> user = user_of(*_socket);
    if (user && socket_owner_t::is_trusted(*user)) {
        return true;
    }
    turn_away(int(_socket->socketDescriptor()));
    Q_EMIT stranger_refused(user);
    if (user && !std::exchange(told_stranger, true)) {
        say(stderr, QStringLiteral("user %1 asked for the settings and was refused; further "
                                   "strangers are refused without a word")
                        .arg(*user));
    }
    return false;
}

void gated_listener_t::incomingConnection(qintptr _descriptor) {
    auto* socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(_descriptor) || !admit(socket)) {
        delete socket;
        return;
    }
    ++connections;
    connect(socket, &QTcpSocket::disconnected, this, [this]() { --connections; });
    auto* gate = new request_gate_t(socket, {.max_head_bytes = request_guard_t::max_head_bytes,
                                             .max_body_bytes = request_guard_t::max_body_bytes,
                                             .limit_ms = limit_ms,
                                             .judge = &request_guard_t::judge});
    connect(gate, &request_gate_t::passed, this, &gated_listener_t::addPendingConnection);
    if (connections > max_connections) {
        gate->refuse({503, QStringLiteral("Too many connections")});
    }
}

}  // namespace torlan
