#include <QTest>

#include "http/loopback.h"

class tst_loopback : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void names_of_this_machine_are_known_without_a_lookup_data();
    void names_of_this_machine_are_known_without_a_lookup();
};

void tst_loopback::names_of_this_machine_are_known_without_a_lookup_data() {
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("expected");
    QTest::newRow("IPv4") << "127.0.0.1" << true;
    QTest::newRow("IPv6") << "::1" << true;
    QTest::newRow("name") << "localhost" << true;
    QTest::newRow("upper case") << "LOCALHOST" << true;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("any address") << "0.0.0.0" << false;
    QTest::newRow("another address") << "192.0.2.1" << false;
    QTest::newRow("a name that begins alike") << "localhost.example.org" << false;
    QTest::newRow("an address that begins alike") << "127.0.0.1.example.org" << false;
    QTest::newRow("a name that ends alike") << "notlocalhost" << false;
    QTest::newRow("with brackets") << "[::1]" << false;
    QTest::newRow("with a port") << "localhost:80" << false;
    QTest::newRow("with a blank") << " localhost" << false;
}

void tst_loopback::names_of_this_machine_are_known_without_a_lookup() {
    QFETCH(QString, host);
    QFETCH(bool, expected);
    QCOMPARE(is_loopback_host(host), expected);
}

QTEST_GUILESS_MAIN(tst_loopback)
#include "tst_loopback.moc"
