#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <QLocalServer>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include "knx/knxd/eib_connection_t.h"

using namespace knx;

class tst_eib_connection_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void pulled_cable_ends_the_connection_within_half_a_minute();
    void socket_of_this_machine_is_opened();
    void nobody_there_is_no_connection();
};

namespace {

/// -1: it has none.
int option_of(const eib_connection_t& _connection, int _level, int _option) {
    int value = -1;
    socklen_t size = sizeof value;
    return getsockopt(_connection.descriptor(), _level, _option, &value, &size) == 0 ? value : -1;
}

}  // namespace

void tst_eib_connection_t::pulled_cable_ends_the_connection_within_half_a_minute() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const auto connection =
        eib_connection_t::open(QStringLiteral("ip:127.0.0.1:%1").arg(server.serverPort()));
    QVERIFY(connection);
    QCOMPARE(option_of(*connection, SOL_SOCKET, SO_KEEPALIVE), 1);
    const int silence = option_of(*connection, IPPROTO_TCP, TCP_KEEPIDLE) +
                        option_of(*connection, IPPROTO_TCP, TCP_KEEPINTVL) *
                            option_of(*connection, IPPROTO_TCP, TCP_KEEPCNT);
    QVERIFY2(silence > 0 && silence < 30, qPrintable(QString::number(silence)));
    const int unsent = option_of(*connection, IPPROTO_TCP, TCP_USER_TIMEOUT);
    QVERIFY2(unsent > 0 && unsent < 30'000, qPrintable(QString::number(unsent)));
}

void tst_eib_connection_t::socket_of_this_machine_is_opened() {
    const QTemporaryDir folder;
    QLocalServer server;
    QVERIFY(server.listen(folder.filePath("bus")));
    const auto connection = eib_connection_t::open("local:" + folder.filePath("bus"));
    QVERIFY(connection && connection->descriptor() >= 0);
    QCOMPARE(int(connection->state()), int(eib_connection_t::state_t::nothing));
}

void tst_eib_connection_t::nobody_there_is_no_connection() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost));
    const QString url = QStringLiteral("ip:127.0.0.1:%1").arg(server.serverPort());
    server.close();
    QVERIFY(!eib_connection_t::open(url));
    QVERIFY(!eib_connection_t::open("local:/nowhere"));
}

QTEST_GUILESS_MAIN(tst_eib_connection_t)
#include "tst_eib_connection_t.moc"
