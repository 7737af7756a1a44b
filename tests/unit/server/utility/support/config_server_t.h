#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTest>
#include <mutex>
#include <thread>

/// A tiny HTTP server on a free loopback port, in a thread of its own: the client blocks. It takes
/// one connection after the other, answers every request of a method with the same bytes and
/// keeps what it was sent. Plain sockets and standard threads: the thread sanitizer cannot see
/// Qt's own synchronisation.
class config_server_t {
 public:
    struct request_t {
        QByteArray method;
        QByteArray target;
        QByteArray body;
    };

    config_server_t() : listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        const bool listens = bind(listener, any, size) == 0 && listen(listener, 8) == 0 &&
                             getsockname(listener, any, &size) == 0;
        QVERIFY(listens);
        listening_port = ntohs(address.sin_port);
        thread = std::thread([this]() { serve(); });
    }
    ~config_server_t() {
        shutdown(listener, SHUT_RDWR);
        if (thread.joinable()) {
            thread.join();
        }
        close(listener);
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
        const std::lock_guard locker(mutex);
        answers[_method] = _bytes;
    }

    QList<request_t> requests() const {
        const std::lock_guard locker(mutex);
        return seen;
    }

 private:
    void serve() {
        for (int peer = accept(listener, nullptr, nullptr); peer >= 0;
             peer = accept(listener, nullptr, nullptr)) {
            const QByteArray received = receive(peer);
            if (!received.isEmpty()) {
                const QByteArray bytes = take(received);
                send(peer, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
            }
            close(peer);
        }
    }

    static QByteArray receive(int _peer) {
        QByteArray received;
        char part[4096];
        while (!is_whole(received)) {
            const ssize_t size = recv(_peer, part, sizeof(part), 0);
            if (size <= 0) {
                return {};
            }
            received.append(part, size);
        }
        return received;
    }

    static qsizetype body_start(const QByteArray& _received) {
        const qsizetype end = _received.indexOf("\r\n\r\n");
        return end < 0 ? -1 : end + 4;
    }

    static bool is_whole(const QByteArray& _received) {
        const qsizetype start = body_start(_received);
        const QByteArray head = _received.left(start).toLower();
        const qsizetype length = head.indexOf("content-length:");
        const qsizetype end = head.indexOf('\r', length);
        const qsizetype expected =
            length < 0 ? 0 : head.mid(length + 15, end - length - 15).trimmed().toLongLong();
        return start >= 0 && _received.size() >= start + expected;
    }

    QByteArray take(const QByteArray& _received) {
        const QByteArrayList line = _received.left(_received.indexOf('\r')).split(' ');
        const std::lock_guard locker(mutex);
        seen.append({line.value(0), line.value(1), _received.mid(body_start(_received))});
        return answers.value(line.value(0));
    }

    mutable std::mutex mutex;  ///< guards answers and seen
    QHash<QByteArray, QByteArray> answers;
    QList<request_t> seen;
    int listener;
    quint16 listening_port = 0;
    std::thread thread;
};
