#include "gated_listener_t.h"

#include "request_gate_t.h"

namespace torlan {

void gated_listener_t::incomingConnection(qintptr _descriptor) {
    auto* socket = new QTcpSocket(this);
    if (!socket->setSocketDescriptor(_descriptor)) {
        delete socket;
        return;
    }
    ++connections;
    connect(socket, &QTcpSocket::disconnected, this, [this]() { --connections; });
    auto* gate = new request_gate_t(socket, limit_ms);
    connect(gate, &request_gate_t::passed, this, &gated_listener_t::addPendingConnection);
    if (connections > max_connections) {
        gate->refuse({503, QStringLiteral("Too many connections")});
    }
}

}  // namespace torlan
