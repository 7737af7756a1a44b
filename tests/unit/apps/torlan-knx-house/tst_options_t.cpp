#include <QTest>

#include "options_t.h"

using torlan::parse_options;

class tst_options_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_is_given_is_taken() {
        const auto read = parse_options(
            {"torlan-knx-house", "--data", "/a", "--knx=local:/b", "--supervisor", "7"});
        QCOMPARE(read.error, QString());
        QCOMPARE(read.value.data, QString("/a"));
        QCOMPARE(read.value.url, QString("local:/b"));
        QCOMPARE(read.value.supervisor, 7);
        QVERIFY(read.value.to_show.isEmpty());
    }

    void wrong_call_is_told_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("no bus") << QStringList() << "--knx URL is needed.";
        QTest::newRow("unknown") << QStringList{"--knx", "x", "--frob"} << "Unknown option 'frob'.";
        QTest::newRow("too much") << QStringList{"--knx", "x", "y"} << "\"y\" is not an option.";
    }

    void wrong_call_is_told() {
        QFETCH(QStringList, given);
        QTEST(parse_options(QStringList{"torlan-knx-house"} + given).error, "sentence");
    }

    void help_is_shown_whatever_else_is_missing() {
        const auto read = parse_options({"torlan-knx-house", "--help"});
        QCOMPARE(read.error, QString());
        QVERIFY(read.value.to_show.contains("--knx"));
    }
};

QTEST_GUILESS_MAIN(tst_options_t)
#include "tst_options_t.moc"
