#include <unistd.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include "program/socket_owner_t.h"

using torlan::socket_owner_t;

namespace {

constexpr const char* headline =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout "
    "inode\n";

QByteArray row(const char* _local, const char* _remote, const char* _state, int _user, int _inode) {
    return QByteArray("   0: ") + _local + ' ' + _remote + ' ' + _state +
           " 00000000:00000000 00:00000000 00000000 " + QByteArray::number(_user) + " 0 " +
           QByteArray::number(_inode) + " 1 0000000000000000 20 4 30 10 -1\n";
}

const socket_owner_t::end_t own{QHostAddress(QHostAddress::LocalHost), 0x10e1};
const socket_owner_t::end_t peer{QHostAddress(QHostAddress::LocalHost), 0xa000};
constexpr const char* own_4 = "0100007F:10E1";
constexpr const char* peer_4 = "0100007F:A000";

}  // namespace

class tst_socket_owner_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_other_end_of_a_connection_data() {
        QTest::addColumn<QByteArray>("rows");
        QTest::addColumn<int>("user");  // -1: nobody
        QTest::newRow("empty") << QByteArray() << -1;
        QTest::newRow("its row") << row(peer_4, own_4, "01", 1000, 77) << 1000;
        QTest::newRow("root's") << row(peer_4, own_4, "01", 0, 77) << 0;
        QTest::newRow("our own end only") << row(own_4, peer_4, "01", 1000, 77) << -1;
        QTest::newRow("closed: user 0, no inode") << row(peer_4, own_4, "01", 0, 0) << -1;
        QTest::newRow("half closed") << row(peer_4, own_4, "04", 0, 77) << -1;
        QTest::newRow("waiting to be gone") << row(peer_4, own_4, "06", 0, 0) << -1;
        QTest::newRow("another port") << row("0100007F:A001", own_4, "01", 1000, 77) << -1;
        QTest::newRow("another address") << row("0200007F:A000", own_4, "01", 1000, 77) << -1;
        QTest::newRow("to another port") << row(peer_4, "0100007F:10E2", "01", 1000, 77) << -1;
        QTest::newRow("version 4 in 6")
            << row("0000000000000000FFFF00000100007F:A000", "0000000000000000FFFF00000100007F:10E1",
                   "01", 1000, 77)
            << 1000;
        QTest::newRow("::1 is another place")
            << row("00000000000000000000000001000000:A000", "00000000000000000000000001000000:10E1",
                   "01", 1000, 77)
            << -1;
        QTest::newRow("after others")
            << row("0100007F:1111", peer_4, "01", 3, 4) + row(peer_4, "0100007F:1111", "01", 5, 6) +
                   row(peer_4, own_4, "01", 1000, 77)
            << 1000;
        QTest::newRow("cut off") << QByteArray("   0: 0100007F:A000 0100007F:10E1 01 0") << -1;
        QTest::newRow("no number")
            << row(peer_4, own_4, "01", 1000, 77).replace(" 1000 ", " many ") << -1;
    }
    void the_other_end_of_a_connection() {
        QFETCH(QByteArray, rows);
        QFETCH(int, user);
        const auto found = socket_owner_t::peer_in(headline + rows, own, peer);
        QCOMPARE(found ? int(*found) : -1, user);
    }

    void who_listens_data() {
        QTest::addColumn<QByteArray>("rows");
        QTest::addColumn<QList<uint>>("users");
        const char* const nobody = "00000000:0000";
        QTest::newRow("nobody") << QByteArray() << QList<uint>();
        QTest::newRow("loopback") << row(own_4, nobody, "0A", 7, 1) << QList<uint>{7};
        QTest::newRow("every address")
            << row("00000000:10E1", nobody, "0A", 7, 1) << QList<uint>{7};
        QTest::newRow("every address, 6")
            << row("00000000000000000000000000000000:10E1", "00000000000000000000000000000000:0000",
                   "0A", 7, 1)
            << QList<uint>{7};
        QTest::newRow("another loopback address")
            << row("0200007F:10E1", nobody, "0A", 7, 1) << QList<uint>();
        QTest::newRow("::1") << row("00000000000000000000000001000000:10E1",
                                    "00000000000000000000000000000000:0000", "0A", 7, 1)
                             << QList<uint>();
        QTest::newRow("another port") << row("0100007F:10E2", nobody, "0A", 7, 1) << QList<uint>();
        QTest::newRow("a connection") << row(own_4, peer_4, "01", 7, 1) << QList<uint>();
        QTest::newRow("loopback goes before every address")
            << row("00000000:10E1", nobody, "0A", 8, 2) + row(own_4, nobody, "0A", 7, 1)
            << QList<uint>{7};
        QTest::newRow("two users") << row("00000000:10E1", nobody, "0A", 7, 1) +
                                          row("00000000000000000000000000000000:10E1",
                                              "00000000000000000000000000000000:0000", "0A", 8, 2)
                                   << QList<uint>{7, 8};
        QTest::newRow("twice the same")
            << row(own_4, nobody, "0A", 7, 1) + row("00000000:10E1", nobody, "0A", 7, 2)
            << QList<uint>{7};
    }
    void who_listens() {
        QFETCH(QByteArray, rows);
        QFETCH(QList<uint>, users);
        const QList<uid_t> found = socket_owner_t::listeners_in(headline + rows, 0x10e1);
        QCOMPARE(QList<uint>(found.begin(), found.end()), users);
    }

    void a_real_connection_is_ours() {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        QCOMPARE(socket_owner_t::of_listeners(server.serverPort()), QList<uid_t>{::getuid()});
        QTcpSocket client;
        client.connectToHost(server.serverAddress(), server.serverPort());
        QVERIFY(client.waitForConnected());
        const socket_owner_t::end_t at_server{server.serverAddress(), server.serverPort()};
        const socket_owner_t::end_t at_client{client.localAddress(), client.localPort()};
        QCOMPARE(socket_owner_t::of_peer(at_server, at_client).value_or(12345), ::getuid());
        client.abort();
        QVERIFY(!socket_owner_t::of_peer(at_server, at_client));
    }

    void our_own_user_and_root_are_trusted() {
        QVERIFY(socket_owner_t::is_trusted(0));
        QVERIFY(socket_owner_t::is_trusted(::geteuid()));
        QVERIFY(!socket_owner_t::is_trusted(::geteuid() + 1));
    }

    void nobody_listens_on_a_closed_port() {
        quint16 port = 0;
        {
            QTcpServer server;
            QVERIFY(server.listen(QHostAddress::LocalHost));
            port = server.serverPort();
        }
        QVERIFY(socket_owner_t::of_listeners(port).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_socket_owner_t)
#include "tst_socket_owner_t.moc"
