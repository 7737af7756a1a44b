#include "kit/free_port.h"

#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QSet>
#include <QTcpServer>
#include <QTest>

class tst_free_port : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_port_can_be_listened_on_and_stays_this_process_s() {
        QSet<quint16> seen;
        for (int i = 0; i < 50; ++i) {
            const quint16 port = kit::free_port();
            QVERIFY(port != 0 && !seen.contains(port));
            seen.insert(port);
            QTcpServer server;
            QVERIFY(server.listen(QHostAddress::LocalHost, port));
        }
    }

    void what_another_process_was_given_is_not_given_here() {
        int ready[2];
        int gate[2];
        QVERIFY(pipe(ready) == 0 && pipe(gate) == 0);
        const pid_t child = fork();
        if (child == 0) {
            const quint16 port = kit::free_port();
            char end = 0;
            _exit(write(ready[1], &port, sizeof(port)) > 0 && read(gate[0], &end, 1) > 0 ? 0 : 1);
        }
        quint16 held = 0;
        QCOMPARE(read(ready[0], &held, sizeof(held)), ssize_t(sizeof(held)));
        QVERIFY(held != 0);
        for (int i = 0; i < 20; ++i) {
            QVERIFY(kit::free_port() != held);
        }
        QCOMPARE(write(gate[1], "x", 1), ssize_t(1));
        int status = -1;
        QCOMPARE(waitpid(child, &status, 0), child);
        QCOMPARE(status, 0);
    }

    void a_port_that_somebody_listens_on_is_passed_over() {
        // One of the next in line, taken by a program that knows nothing of reservations.
        const quint16 last = kit::free_port();
        quint16 taken = last + 1;
        QTcpServer other;
        while (!other.listen(QHostAddress::Any, taken)) {
            ++taken;
        }
        for (int port = last; port <= taken; ++port) {
            QVERIFY(kit::free_port() != taken);
        }
    }

    void ports_lie_below_those_that_the_system_gives_away() {
        QFile range(QStringLiteral("/proc/sys/net/ipv4/ip_local_port_range"));
        QVERIFY(range.open(QIODevice::ReadOnly));
        const int lowest = range.readAll().simplified().split(' ').value(0).toInt();
        if (lowest < 30000) {
            QSKIP("this machine gives away lower ports than Linux does by default");
        }
        QVERIFY(kit::free_port() < lowest);
    }
};

QTEST_GUILESS_MAIN(tst_free_port)
#include "tst_free_port.moc"
