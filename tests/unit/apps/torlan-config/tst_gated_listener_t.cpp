#include "gated_listener_t.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include "config_server_t.h"
#include "unit/apps/torlan-config/support/raw_http.h"

using namespace torlan;

using raw_http::all_of;
using raw_http::body_of;
using raw_http::connected;
using raw_http::request;
using raw_http::status_of;

// The listener with its gates, seen from the wire, with the whole server behind it.
class tst_gated_listener_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void large_body_is_refused_before_it_is_sent();
    void refusal_reaches_a_client_that_still_sends();
    void client_that_waits_is_told_to_go_on();
    void client_that_does_not_wait_gets_one_answer();
    void requests_in_one_go_are_refused();
    void bytes_after_a_request_are_not_served();
    void slow_request_is_ended();
    void client_that_goes_away_does_no_harm();
    void too_many_connections_are_refused_and_recover();
    void only_loopback_is_listened_on();
    void request_in_pieces_is_served();
    void no_connection_is_kept();
    void shipped_limits();
    void other_users_are_refused();
    void other_users_take_no_connection();
    void who_sends_and_closes_is_refused();

 private:
    QByteArray exchange(const QByteArray& _bytes) const {
        return raw_http::exchange(server->port(), _bytes);
    }
    QByteArray document() const { return body_of(exchange(request("GET /"))); }

    std::unique_ptr<QTemporaryDir> folder;
    std::unique_ptr<config_server_t> server;
};

void tst_gated_listener_t::init() {
    server.reset();
    folder = std::make_unique<QTemporaryDir>();
    server = std::make_unique<config_server_t>(QString());
    QCOMPARE(server->start(folder->filePath("s.json"), 0).error, QString());
}

void tst_gated_listener_t::large_body_is_refused_before_it_is_sent() {
    const QByteArray head =
        "PUT /a HTTP/1.1\r\nHost: localhost\r\nContent-Length: 1048577\r\nExpect: 100-continue\r\n"
        "\r\n";
    QCOMPARE(status_of(exchange(head)), 413);
}

void tst_gated_listener_t::refusal_reaches_a_client_that_still_sends() {
    const QByteArray answer = exchange(request("PUT /a", QByteArray(8 * 1024 * 1024, '1')));
    QCOMPARE(status_of(answer), 413);
    QCOMPARE(document(), "{}");
}

void tst_gated_listener_t::client_that_waits_is_told_to_go_on() {
    const auto socket = connected(server->port());
    socket->write(
        "PUT /a HTTP/1.1\r\nHost: localhost\r\nContent-Length: 1\r\n"
        "Expect: 100-continue\r\n\r\n");
    QTRY_COMPARE(socket->bytesAvailable(), 25);
    QCOMPARE(socket->readAll(), "HTTP/1.1 100 Continue\r\n\r\n");
    socket->write("7");
    QCOMPARE(status_of(all_of(socket.get())), 200);
    QCOMPARE(document(), "{\"a\":7}");
}

void tst_gated_listener_t::client_that_does_not_wait_gets_one_answer() {
    const QByteArray headers = "Host: localhost\r\nExpect: 100-continue\r\n";
    const QByteArray answer = exchange(request("PUT /a", "7", headers));
    QCOMPARE(status_of(answer), 200);
    QCOMPARE(answer.count("HTTP/1.1"), 1);
    QCOMPARE(document(), "{\"a\":7}");
}

void tst_gated_listener_t::requests_in_one_go_are_refused() {
    const QByteArray second = request("PUT /smuggled", "1", "Host: evil.example\r\n");
    const QByteArray answer = exchange(request("PUT /a", "1") + second);
    QCOMPARE(status_of(answer), 400);
    QCOMPARE(answer.count("HTTP/1.1"), 1);
    QCOMPARE(document(), "{}");
}

// A plain socket: Qt's would close with the server's end of the connection and send nothing more.
void tst_gated_listener_t::bytes_after_a_request_are_not_served() {
    const int client = ::socket(AF_INET, SOCK_STREAM, 0);
    const auto close_it = qScopeGuard([client]() { ::close(client); });
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(server->port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    QCOMPARE(::connect(client, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const auto send = [client](const QByteArray& bytes) {
        return ::send(client, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL) ==
               bytes.size();
    };
    QVERIFY(send(request("GET /")));
    char byte = 0;
    QTRY_VERIFY(::recv(client, &byte, 1, MSG_DONTWAIT | MSG_PEEK) == 1);
    QVERIFY(send(request("PUT /smuggled", "1", "Host: evil.example\r\n")));
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(document(), "{}");
    }
}

void tst_gated_listener_t::slow_request_is_ended() {
    server->set_limit(100);
    QCOMPARE(status_of(exchange("GET / HTTP/1.1\r\n")), 408);
    QCOMPARE(
        status_of(exchange("PUT /a HTTP/1.1\r\nHost: localhost\r\nContent-Length: 9\r\n\r\n1")),
        408);
    QCOMPARE(document(), "{}");
}

void tst_gated_listener_t::client_that_goes_away_does_no_harm() {
    for (const QByteArray& bytes : {QByteArray(), QByteArray("PUT /a HT"),
                                    request("PUT /a", "1234").chopped(2), request("GET /")}) {
        const auto socket = connected(server->port());
        QVERIFY(socket->waitForConnected());
        socket->write(bytes);
        socket->flush();
        socket->abort();
    }
    QCOMPARE(document(), "{}");
}

void tst_gated_listener_t::too_many_connections_are_refused_and_recover() {
    std::vector<std::unique_ptr<QTcpSocket>> sockets;
    for (int i = 0; i < gated_listener_t::max_connections; ++i) {
        sockets.push_back(connected(server->port()));
        QTRY_COMPARE(sockets.back()->state(), QTcpSocket::ConnectedState);
    }
    QTRY_COMPARE(status_of(exchange(request("GET /"))), 503);
    sockets.clear();
    QTRY_COMPARE(status_of(exchange(request("GET /"))), 200);
}

void tst_gated_listener_t::only_loopback_is_listened_on() {
    QTcpSocket other;
    other.connectToHost(QStringLiteral("127.0.0.2"), server->port());
    QVERIFY(!other.waitForConnected(2000));
    QCOMPARE(other.error(), QTcpSocket::ConnectionRefusedError);
}

void tst_gated_listener_t::request_in_pieces_is_served() {
    const auto socket = connected(server->port());
    QVERIFY(socket->waitForConnected());
    const QByteArray bytes = request("PUT /a", "\"in pieces\"");
    for (const char byte : bytes) {
        socket->write(&byte, 1);
        socket->flush();
        QCoreApplication::processEvents();
    }
    QCOMPARE(status_of(all_of(socket.get())), 200);
    QCOMPARE(document(), "{\"a\":\"in pieces\"}");
}

void tst_gated_listener_t::no_connection_is_kept() {
    gated_listener_t alone;
    QVERIFY(alone.listen(QHostAddress::LocalHost));
    QCOMPARE(status_of(raw_http::exchange(alone.serverPort(), request("DELETE /"))), 405);
    {
        const auto socket = connected(alone.serverPort());
        QTRY_VERIFY(!alone.findChildren<QTcpSocket*>().isEmpty());
    }
    QTRY_VERIFY(alone.findChildren<QTcpSocket*>().isEmpty());
}

void tst_gated_listener_t::shipped_limits() {
    QCOMPARE(gated_listener_t::default_limit_ms, 10000);
    QCOMPARE(gated_listener_t::max_connections, 64);
}

namespace {

/// What the account nobody gets for a request, as a shell of its own asks it.
QByteArray answer_to_nobody(quint16 _port, const QByteArray& _line) {
    QProcess shell;
    shell.start("setpriv",
                {"--reuid=65534", "--regid=65534", "--clear-groups", "bash", "-c",
                 "exec 3<>/dev/tcp/127.0.0.1/$0 && printf '%s HTTP/1.1\\r\\nHost: 127.0.0.1\\r\\n"
                 "Content-Length: 2\\r\\n\\r\\n{}' \"$1\" >&3 && cat <&3",
                 QString::number(_port), QString::fromLatin1(_line)});
    QSignalSpy finished(&shell, &QProcess::finished);
    return finished.wait(5000) ? shell.readAllStandardOutput() : QByteArray("not finished");
}

}  // namespace

void tst_gated_listener_t::other_users_are_refused() {
    if (::geteuid() != 0) {
        QSKIP("only root can become another user");
    }
    const QByteArray before = document();
    QCOMPARE(status_of(answer_to_nobody(server->port(), "GET /")), 403);
    QCOMPARE(status_of(answer_to_nobody(server->port(), "PUT /")), 403);
    QCOMPARE(document(), before);
}

void tst_gated_listener_t::other_users_take_no_connection() {
    if (::geteuid() != 0) {
        QSKIP("only root can become another user");
    }
    // As many as there are, and each of them stays open.
    QProcess shell;
    shell.start("setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups", "bash", "-c",
                            "for i in {10..90}; do eval \"exec $i<>/dev/tcp/127.0.0.1/$0\"; done; "
                            "echo all; read",
                            QString::number(server->port())});
    QTRY_VERIFY(shell.bytesAvailable() > 0);
    QCOMPARE(status_of(exchange(request("GET /"))), 200);
    shell.closeWriteChannel();
    QVERIFY(shell.waitForFinished());
}

void tst_gated_listener_t::who_sends_and_closes_is_refused() {
    const QByteArray before = document();
    // A closed socket shows as root's in the kernel's tables. The listener looks when we let it.
    {
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, server->port());
        QVERIFY(client.waitForConnected());
        client.write(request("PUT /", "{\"taken\": 1}"));
        QVERIFY(client.waitForBytesWritten());
    }
    QCOMPARE(document(), before);
}

QTEST_GUILESS_MAIN(tst_gated_listener_t)
#include "tst_gated_listener_t.moc"
