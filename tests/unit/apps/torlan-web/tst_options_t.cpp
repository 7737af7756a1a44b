#include "options_t.h"

#include <QTest>

using torlan::parse_options;

class tst_options_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void every_option_is_taken() {
        const auto read = parse_options({"torlan-web", "--pages", "p", "--facts", "f", "--port=0",
                                         "--ws-port", "9", "--user", "u"});
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.pages, QString("p"));
        QCOMPARE(read.value.facts, QString("f"));
        QCOMPARE(read.value.port, quint16(0));
        QCOMPARE(read.value.ws_port, quint16(9));
        QCOMPARE(read.value.user, QString("u"));
        QCOMPARE(read.value.supervisor, -1);
    }

    void wrong_one_is_told_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QString>("named");
        QTest::newRow("no number") << QStringList{"--port", "x"} << "--port takes";
        QTest::newRow("above ports") << QStringList{"--port", "65536"} << "\"65536\"";
        QTest::newRow("no WebSockets") << QStringList{"--ws-port", "0"} << "--ws-port takes";
        QTest::newRow("unknown") << QStringList{"--no-such"} << "no-such";
        QTest::newRow("a word") << QStringList{"word"} << "word";
    }
    void wrong_one_is_told() {
        QFETCH(QStringList, given);
        QFETCH(QString, named);
        const auto read = parse_options(QStringList{"torlan-web"} + given);
        QVERIFY2(read.error.contains(named), qPrintable(read.error));
    }
};

QTEST_GUILESS_MAIN(tst_options_t)
#include "tst_options_t.moc"
