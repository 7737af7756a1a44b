#pragma once

#include <QHostAddress>
#include <QList>
#include <QMutex>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <functional>

namespace fakes {

/// An HTTP server on a free loopback port and a thread of its own, so that blocking clients can be
/// tested against it. It answers whatever bytes the script returns, well-formed or not, and keeps
/// what it received.
class tiny_http_server_t {
 public:
    struct request_t {
        QByteArray method;
        QByteArray target;  ///< as sent
        QByteArray head;    ///< request line and headers
        QByteArray body;
    };
    struct answer_t {
        QByteArray bytes;
        bool closes = true;  ///< false: the connection stays open after the bytes
        int drip_ms = 0;     ///< > 0: one byte each so many milliseconds
    };
    /// Called on the server's thread, once per whole request.
    using script_t = std::function<answer_t(const request_t&)>;

    /// An answer as it should be.
    static answer_t json(const QByteArray& _body, const QByteArray& _status = "200 OK") {
        return {"HTTP/1.1 " + _status + "\r\nContent-Type: application/json\r\nContent-Length: " +
                QByteArray::number(_body.size()) + "\r\n\r\n" + _body};
    }
    /// Takes the request and never says anything.
    static answer_t silence() { return {{}, false}; }

    explicit tiny_http_server_t(script_t _script) : script(std::move(_script)) {
        server.listen(QHostAddress::LocalHost);
        server_port = server.serverPort();
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this]() { accept(); });
        server.moveToThread(&thread);
        thread.start();
    }
    explicit tiny_http_server_t(const answer_t& _answer)
        : tiny_http_server_t([_answer](const request_t&) { return _answer; }) {}
    ~tiny_http_server_t() {
        QMetaObject::invokeMethod(
            &server, [this]() { close(); }, Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
    }

    quint16 port() const { return server_port; }
    /// "http://127.0.0.1:PORT/"
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/").arg(server_port); }
    QList<request_t> requests() const {
        const QMutexLocker locker(&mutex);
        return received;
    }

 private:
    // What lives in the server's thread has to go there too.
    void close() {
        const auto sockets = server.findChildren<QTcpSocket*>();
        qDeleteAll(sockets);
        server.close();
        server.moveToThread(nullptr);
    }

    void accept() {
        while (QTcpSocket* socket = server.nextPendingConnection()) {
            QObject::connect(socket, &QTcpSocket::readyRead, socket,
                             [this, socket]() { examine(socket); });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

    void examine(QTcpSocket* _socket) {
        const QByteArray bytes = _socket->peek(_socket->bytesAvailable());
        const qsizetype end = bytes.indexOf("\r\n\r\n");
        const request_t request = parse(bytes, end);
        if (end < 0 || request.body.size() < length_of(request.head)) {
            return;
        }
        _socket->readAll();
        {
            const QMutexLocker locker(&mutex);
            received.append(request);
        }
        send(_socket, script(request));
    }

    static request_t parse(const QByteArray& _bytes, qsizetype _end) {
        const QList<QByteArray> line = _bytes.left(_bytes.indexOf("\r\n")).split(' ');
        return {line.value(0), line.value(1), _bytes.left(_end), _bytes.mid(_end + 4)};
    }

    static qsizetype length_of(const QByteArray& _head) {
        const QByteArray head = _head.toLower() + "\r\n";
        const qsizetype start = head.indexOf("\r\ncontent-length:");
        return start < 0 ? 0
                         : head.mid(start + 17, head.indexOf("\r\n", start + 2) - start - 17)
                               .trimmed()
                               .toLongLong();
    }

    static void send(QTcpSocket* _socket, const answer_t& _answer) {
        if (_answer.drip_ms > 0) {
            drip(_socket, _answer);
            return;
        }
        _socket->write(_answer.bytes);
        if (_answer.closes) {
            _socket->disconnectFromHost();
        }
    }

    static void drip(QTcpSocket* _socket, answer_t _answer) {
        if (_answer.bytes.isEmpty()) {
            _answer.drip_ms = 0;
            send(_socket, _answer);
            return;
        }
        _socket->write(_answer.bytes.left(1));
        _answer.bytes.remove(0, 1);
        QTimer::singleShot(_answer.drip_ms, _socket,
                           [_socket, _answer]() { drip(_socket, _answer); });
    }

    const script_t script;
    QThread thread;
    QTcpServer server;  ///< lives in thread
    quint16 server_port = 0;
    mutable QMutex mutex;
    QList<request_t> received;  ///< guarded by mutex
};

}  // namespace fakes
