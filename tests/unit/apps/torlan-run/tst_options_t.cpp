#include <QDir>
#include <QTest>

#include "options_t.h"

using torlan::options_t;
using torlan::parse_options;

class tst_options_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_is_its_own_is_taken_and_the_rest_goes_on() {
        const auto read = parse_options({"torlan-run", "--port", "1", "--data=/a/../b",
                                         "--config-port", "5", "--import", "x.json", "--user=u",
                                         "--simulate", "--limit", "requests=3"});
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.data, QString("/b"));
        QCOMPARE(read.value.config_port, quint16(5));
        QCOMPARE(read.value.user, QString("u"));
        QCOMPARE(read.value.server,
                 (QStringList{"--port", "1", "--simulate", "--limit", "requests=3"}));
        QCOMPARE(read.value.once, (QStringList{"--import", "x.json"}));
    }

    void defaults() {
        const auto read = parse_options({"torlan-run"});
        QCOMPARE(read.value.data, QDir::current().absoluteFilePath("var"));
        QCOMPARE(read.value.config_port, quint16(4321));
        QVERIFY(read.value.server.isEmpty() && read.value.once.isEmpty());
        QVERIFY(read.value.user.isEmpty() && read.value.to_show.isEmpty());
    }

    void bus_of_its_own_is_not_the_server_s_matter_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<bool>("is_demo");
        QTest::addColumn<QStringList>("server");
        QTest::newRow("demo") << QStringList{"--knx", "demo"} << true << QStringList();
        QTest::newRow("with =") << QStringList{"--knx=demo", "--port", "1"} << true
                                << QStringList{"--port", "1"};
        QTest::newRow("socket") << QStringList{"--knx", "local:/run/knx"} << false
                                << QStringList{"--knx", "local:/run/knx"};
        QTest::newRow("machine") << QStringList{"--knx=ip:host"} << false
                                 << QStringList{"--knx", "ip:host"};
        QTest::newRow("another word")
            << QStringList{"--knx", "Demo"} << false << QStringList{"--knx", "Demo"};
        QTest::newRow("the last one counts") << QStringList{"--knx=demo", "--knx=ip:host"} << false
                                             << QStringList{"--knx", "ip:host"};
    }

    void bus_of_its_own_is_not_the_server_s_matter() {
        QFETCH(QStringList, given);
        const auto read = parse_options(QStringList{"torlan-run"} + given);
        QTEST(read.value.is_knx_demo, "is_demo");
        QTEST(read.value.server, "server");
    }

    void console_is_ours_and_the_ports_it_must_know_go_on() {
        const auto read = parse_options(
            {"torlan-run", "--web-port", "7", "--ws-port=9", "--port", "3", "--no-web"});
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.web_port, std::optional<quint16>(7));
        QCOMPARE(read.value.ws_port, std::optional<quint16>(9));
        QCOMPARE(read.value.port, std::optional<quint16>(3));
        QVERIFY(read.value.no_web);
        QCOMPARE(read.value.server, (QStringList{"--ws-port", "9", "--port", "3"}));
    }

    void wrong_one_is_told_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QString>("named");
        QTest::newRow("no value") << QStringList{"--data"} << "--data needs a value.";
        QTest::newRow("no bus") << QStringList{"--knx"} << "--knx needs a value.";
        QTest::newRow("no number") << QStringList{"--config-port", "x"} << "\"x\"";
        QTest::newRow("port 0") << QStringList{"--config-port=0"} << "\"0\"";
        QTest::newRow("above ports") << QStringList{"--config-port", "65536"} << "\"65536\"";
        QTest::newRow("web port 0") << QStringList{"--web-port=0"} << "--web-port takes";
        QTest::newRow("web port, no value") << QStringList{"--web-port"} << "--web-port needs";
        QTest::newRow("empty port") << QStringList{"--config-port="} << "\"\"";
    }

    void wrong_one_is_told() {
        QFETCH(QStringList, given);
        QFETCH(QString, named);
        const auto read = parse_options(QStringList{"torlan-run"} + given);
        QVERIFY2(read.error.contains(named), qPrintable(read.error));
    }

    void help_and_version_are_shown() {
        QVERIFY(parse_options({"torlan-run", "--help"}).value.to_show.contains("--data DIR"));
        QVERIFY(!parse_options({"torlan-run", "-v"}).value.to_show.isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_options_t)
#include "tst_options_t.moc"
