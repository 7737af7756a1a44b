#pragma once

#include <QByteArray>
#include <QHostAddress>
#include <QSignalSpy>
#include <QTcpSocket>
#include <memory>

/// HTTP as bytes, for tests that say exactly what goes over the wire.
namespace raw_http {

inline QByteArray request(const QByteArray& _line, const QByteArray& _body = {},
                          const QByteArray& _headers = "Host: 127.0.0.1\r\n") {
    return _line + " HTTP/1.1\r\n" + _headers +
           "Content-Length: " + QByteArray::number(_body.size()) + "\r\n\r\n" + _body;
}

inline int status_of(const QByteArray& _answer) {
    return _answer.mid(9, 3).toInt();
}

inline QByteArray body_of(const QByteArray& _answer) {
    return _answer.mid(_answer.indexOf("\r\n\r\n") + 4);
}

inline std::unique_ptr<QTcpSocket> connected(quint16 _port) {
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QHostAddress::LocalHost, _port);
    return socket;
}

/// Everything that comes back until the server closes; the event loop runs meanwhile.
inline QByteArray all_of(QTcpSocket* _socket) {
    QSignalSpy closed(_socket, &QTcpSocket::disconnected);
    return _socket->state() == QTcpSocket::UnconnectedState || closed.wait(5000)
               ? _socket->readAll()
               : QByteArray("not closed");
}

inline QByteArray exchange(quint16 _port, const QByteArray& _bytes) {
    const auto socket = connected(_port);
    socket->write(_bytes);
    return all_of(socket.get());
}

}  // namespace raw_http
