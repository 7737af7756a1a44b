#include "program/port_holder.h"

#include <sys/types.h>
#include <unistd.h>

#include <QFile>
#include <QTcpServer>
#include <QTest>

class tst_port_holder : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void process_and_user_are_told_data();
    void process_and_user_are_told();
    void nobody_is_nobody();
};

void tst_port_holder::process_and_user_are_told_data() {
    QTest::addColumn<QHostAddress>("address");
    QTest::newRow("loopback") << QHostAddress(QHostAddress::LocalHost);
    QTest::newRow("everywhere") << QHostAddress(QHostAddress::Any);
}

void tst_port_holder::process_and_user_are_told() {
    QFETCH(QHostAddress, address);
    QTcpServer server;
    QVERIFY(server.listen(address));
    QFile name(QStringLiteral("/proc/self/comm"));
    QVERIFY(name.open(QIODevice::ReadOnly));
    QCOMPARE(torlan::port_holder(server.serverPort()),
             QStringLiteral("process %1 (%2) of user %3")
                 .arg(QString::number(::getpid()), QString::fromUtf8(name.readAll()).simplified(),
                      QString::number(::geteuid())));
}

void tst_port_holder::nobody_is_nobody() {
    quint16 port = 0;
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        port = server.serverPort();
    }
    QCOMPARE(torlan::port_holder(port), QString());
}

QTEST_GUILESS_MAIN(tst_port_holder)
#include "tst_port_holder.moc"
