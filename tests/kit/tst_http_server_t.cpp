#include "kit/http_server_t.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>
#include <memory>

using kit::http_server_t;

namespace {

std::unique_ptr<QTcpSocket> connected(const http_server_t& _server) {
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QStringLiteral("127.0.0.1"), _server.port());
    return socket->waitForConnected() ? std::move(socket) : nullptr;
}

/// What comes until the server closes.
QByteArray all_of(QTcpSocket* _socket) {
    while (_socket->waitForReadyRead()) {
    }
    return _socket->state() == QTcpSocket::UnconnectedState ? _socket->readAll() : "still open";
}

}  // namespace

class tst_http_server_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_request_in_parts_is_answered_once_whole() {
        http_server_t server(http_server_t::json("1"));
        const auto client = connected(server);
        for (const char* part : {"PUT /a?b HT", "TP/1.1\r\nContent-", "Length: 3\r\n\r\nx", "yz"}) {
            QVERIFY(server.requests().isEmpty());
            client->write(part);
            client->waitForBytesWritten();
        }
        QCOMPARE(all_of(client.get()), http_server_t::json("1").bytes);
        QCOMPARE(server.requests().size(), 1);
        QCOMPARE(server.requests()[0].method, QByteArray("PUT"));
        QCOMPARE(server.requests()[0].target, QByteArray("/a?b"));
        QCOMPARE(server.requests()[0].body, QByteArray("xyz"));
        QVERIFY(server.requests()[0].head.endsWith("Content-Length: 3"));
    }

    void an_open_connection_takes_the_next_request() {
        http_server_t server([](const http_server_t::request_t& _request) {
            return http_server_t::answer_t{_request.target, _request.target == "/last"};
        });
        const auto client = connected(server);
        client->write("GET /first HTTP/1.1\r\n\r\nGET /last HTTP/1.1\r\n\r\n");
        QCOMPARE(all_of(client.get()), QByteArray("/first/last"));
    }

    void several_clients_are_served_at_once() {
        http_server_t server(http_server_t::json("1"));
        const auto idle = connected(server);
        const auto other = connected(server);
        other->write("GET / HTTP/1.1\r\n\r\n");
        QCOMPARE(all_of(other.get()), http_server_t::json("1").bytes);
    }

    void it_ends_while_it_drips_and_while_clients_wait() {
        QElapsedTimer clock;
        clock.start();
        {
            http_server_t server(http_server_t::answer_t{QByteArray(1000, 'x'), true, 1000});
            const auto dripped = connected(server);
            dripped->write("GET / HTTP/1.1\r\n\r\n");
            const auto idle = connected(server);
            QVERIFY(dripped->waitForReadyRead());
        }
        QVERIFY(clock.elapsed() < 20000);
    }
};

QTEST_GUILESS_MAIN(tst_http_server_t)
#include "tst_http_server_t.moc"
