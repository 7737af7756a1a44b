#pragma once

#include <QTcpServer>

namespace torlan {

/// Listens on loopback and gives the HTTP server behind it only connections that hold one whole,
/// allowed request (see request_gate_t).
class gated_listener_t : public QTcpServer {
    Q_OBJECT

 public:
    static constexpr int default_limit_ms = 10000;
    /// Connections at once; a further one is told so and closed.
    static constexpr int max_connections = 64;

    explicit gated_listener_t(QObject* _parent = nullptr) : QTcpServer(_parent) {}

    /// Time for one request and its answer, for connections to come.
    void set_limit(int _limit_ms) { limit_ms = _limit_ms; }

 protected:
    void incomingConnection(qintptr _descriptor) override;

 private:
    int limit_ms = default_limit_ms;
    int connections = 0;
};

}  // namespace torlan
