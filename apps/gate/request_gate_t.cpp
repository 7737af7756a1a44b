#include "gate/request_gate_t.h"

#include <sys/socket.h>

namespace torlan {

namespace {

// Long enough for a client to take a refusal while it still sends.
constexpr int linger_ms = 2000;

}  // namespace

request_gate_t::request_gate_t(QTcpSocket* _socket, const gate_rules_t& _rules)
    : QObject(_socket), socket(_socket), rules(_rules) {
    socket->setReadBufferSize(rules.max_head_bytes + rules.max_body_bytes + 1);
    connect(socket, &QTcpSocket::readyRead, this, &request_gate_t::examine);
    connect(socket, &QTcpSocket::bytesWritten, this, &request_gate_t::close_when_sent);
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    connect(&limit, &QTimer::timeout, this, &request_gate_t::on_late);
    limit.setSingleShot(true);
    limit.start(rules.limit_ms);
}

void request_gate_t::examine() {
    if (whole_bytes > 0) {
        examine_body();
        return;
    }
    const QByteArray start = socket->peek(rules.max_head_bytes);
    const qsizetype end = start.indexOf("\r\n\r\n");
    if (end < 0 && start.size() < rules.max_head_bytes) {
        return;
    }
    const auto head = end < 0 ? std::nullopt : request_head_t::parse(start.left(end + 2));
    if (!head) {
        refuse(end < 0 ? refusal_t{431, QStringLiteral("The headers are too large")}
                       : refusal_t{400, QStringLiteral("The request is malformed")});
        return;
    }
    if (const refusal_t refusal = rules.judge(*head)) {
        refuse(refusal);
        return;
    }
    head_bytes = end + 4;
    whole_bytes = head_bytes + *head->body_bytes();
    expects_go_on = head->expects_go_on;
    if (expects_go_on && socket->bytesAvailable() < whole_bytes) {
        socket->write("HTTP/1.1 100 Continue\r\n\r\n");
    }
    examine_body();
}

void request_gate_t::examine_body() {
    if (socket->bytesAvailable() == whole_bytes) {
        pass();
    } else if (socket->bytesAvailable() > whole_bytes) {
        refuse({400, QStringLiteral("One request a connection")});
    }
}

void request_gate_t::pass() {
    is_decided = true;
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    if (expects_go_on) {
        take_out_expectation();
    }
    Q_EMIT passed(socket);
    Q_EMIT socket->readyRead();
    // The server behind has taken its request; whatever follows on this connection is not for it.
    disconnect(socket, &QTcpSocket::readyRead, nullptr, nullptr);
}

// The client was told to go on or did not wait, but Qt 6.8's HTTP server would tell it again.
void request_gate_t::take_out_expectation() {
    const QByteArray head = request_head_t::without_expectation(socket->read(head_bytes));
    for (qsizetype i = head.size(); i > 0; --i) {
        socket->ungetChar(head.at(i - 1));
    }
}

void request_gate_t::refuse(const refusal_t& _refusal) {
    is_decided = true;
    disconnect(socket, &QTcpSocket::readyRead, this, nullptr);
    connect(socket, &QTcpSocket::readyRead, socket, [this]() { socket->readAll(); });
    socket->readAll();
    socket->write(refusal_answer(_refusal));
    limit.start(linger_ms);
}

// A close with bytes unread would reset the connection and take the answer away from the client:
// first only this direction ends.
void request_gate_t::close_when_sent() {
    if (is_decided && socket->bytesToWrite() == 0) {
        ::shutdown(int(socket->socketDescriptor()), SHUT_WR);
    }
}

void request_gate_t::on_late() {
    if (is_decided) {
        socket->abort();
    } else {
        refuse({408, QStringLiteral("The request took too long")});
    }
}

}  // namespace torlan
