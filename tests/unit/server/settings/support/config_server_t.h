#pragma once

#include <QByteArray>
#include <QHash>
#include <QHostAddress>
#include <QList>
#include <QMutex>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <memory>

/// A tiny HTTP server on a free loopback port, in a thread of its own: the client blocks. It
/// answers every request of a method with the same bytes and keeps what it was sent.
class config_server_t {
 public:
    struct request_t {
        QByteArray method;
        QByteArray target;
        QByteArray body;
    };

    config_server_t() {
        server.listen(QHostAddress::LocalHost);
        listening_port = server.serverPort();
        QObject::connect(&server, &QTcpServer::newConnection, &server, [this]() { accept(); });
        server.moveToThread(&thread);
        thread.start();
    }
    ~config_server_t() {
        QMetaObject::invokeMethod(
            &server,
            [this]() {
                qDeleteAll(server.findChildren<QTcpSocket*>());
                server.close();
            },
            Qt::BlockingQueuedConnection);
        thread.quit();
        thread.wait();
    }
    Q_DISABLE_COPY_MOVE(config_server_t)

    quint16 port() const { return listening_port; }

    void answer(const QByteArray& _method, const QByteArray& _status, const QByteArray& _body) {
        answer_raw(_method, "HTTP/1.1 " + _status + "\r\nContent-Type: application/json\r\n" +
                                "Connection: close\r\nContent-Length: " +
                                QByteArray::number(_body.size()) + "\r\n\r\n" + _body);
    }
    /// Whatever bytes; nothing: the connection is closed without an answer.
    void answer_raw(const QByteArray& _method, const QByteArray& _bytes) {
        const QMutexLocker locker(&mutex);
        answers[_method] = _bytes;
    }

    QList<request_t> requests() const {
        const QMutexLocker locker(&mutex);
        return seen;
    }

 private:
    void accept() {
        while (QTcpSocket* const socket = server.nextPendingConnection()) {
            auto received = std::make_shared<QByteArray>();
            QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, received]() {
                received->append(socket->readAll());
                if (is_whole(*received)) {
                    socket->write(take(*received));
                    socket->disconnectFromHost();
                }
            });
            QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

    static qsizetype body_start(const QByteArray& _received) {
        const qsizetype end = _received.indexOf("\r\n\r\n");
        return end < 0 ? -1 : end + 4;
    }

    static bool is_whole(const QByteArray& _received) {
        const qsizetype start = body_start(_received);
        const QByteArray head = _received.left(start).toLower();
        const qsizetype length = head.indexOf("content-length:");
        const qsizetype expected =
            length < 0 ? 0
                       : head.mid(length + 15, head.indexOf('\r', length) - length - 15)
                             .trimmed()
                             .toLongLong();
        return start >= 0 && _received.size() >= start + expected;
    }

    QByteArray take(const QByteArray& _received) {
        const QByteArrayList line = _received.left(_received.indexOf('\r')).split(' ');
        const QMutexLocker locker(&mutex);
        seen.append({line.value(0), line.value(1), _received.mid(body_start(_received))});
        return answers.value(line.value(0));
    }

    mutable QMutex mutex;  ///< guards answers and seen
    QHash<QByteArray, QByteArray> answers;
    QList<request_t> seen;
    quint16 listening_port = 0;
    QThread thread;
    QTcpServer server;
};
