#pragma once

#include <sys/types.h>

#include <QTcpServer>
#include <optional>

#include "gate/gate_rules_t.h"

namespace torlan {

/// Listens on loopback and gives the HTTP server behind it only connections that hold one whole,
/// allowed request (see request_gate_t) of the user that it runs as, or of root.
///
/// Every other user of the machine reaches the port too, so who asks is judged first, by the
/// kernel's tables: a stranger takes no connection of the 64.
class gated_listener_t : public QTcpServer {
    Q_OBJECT

 public:
    static constexpr int default_limit_ms = gate_rules_t::default_limit_ms;
    /// Connections at once; a further one is told so and closed.
    static constexpr int max_connections = 64;

    explicit gated_listener_t(QObject* _parent = nullptr) : QTcpServer(_parent) {}

    /// Time for one request and its answer, for connections to come.
    void set_limit(int _limit_ms) { limit_ms = _limit_ms; }

 Q_SIGNALS:
    /// Somebody else was turned away; without a value it is not known who.
    void stranger_refused(std::optional<uid_t> user);

 protected:
    void incomingConnection(qintptr _descriptor) override;

 private:
    bool admit(QTcpSocket* _socket);

    int limit_ms = default_limit_ms;
    int connections = 0;
    bool told_stranger = false;
};

}  // namespace torlan
