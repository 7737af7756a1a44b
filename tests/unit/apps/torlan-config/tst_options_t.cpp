#include "options_t.h"

#include <QTest>

using torlan::parse_options;

class tst_options_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_given_is_the_shipped_default() {
        const auto parsed = parse({});
        QCOMPARE(parsed.error, QString());
        QCOMPARE(parsed.value.file, QStringLiteral("settings.json"));
        QCOMPARE(parsed.value.port, quint16(4321));
        QCOMPARE(parsed.value.trigger, QString());
        QCOMPARE(parsed.value.to_show, QString());
    }

    void every_option_is_taken() {
        const auto parsed = parse({"--file", "f", "--port", "0", "--trigger", "t"});
        QCOMPARE(parsed.error, QString());
        QCOMPARE(parsed.value.file, QStringLiteral("f"));
        QCOMPARE(parsed.value.port, quint16(0));
        QCOMPARE(parsed.value.trigger, QStringLiteral("t"));
    }

    void what_makes_no_sense_is_one_sentence_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("port of letters")
            << QStringList{"--port", "x"} << "--port takes a number from 0 to 65535, not \"x\".";
        QTest::newRow("port too high") << QStringList{"--port", "65536"}
                                       << "--port takes a number from 0 to 65535, not \"65536\".";
        QTest::newRow("negative port")
            << QStringList{"--port=-1"} << "--port takes a number from 0 to 65535, not \"-1\".";
        QTest::newRow("stray word") << QStringList{"word"} << "\"word\" is not an option.";
        QTest::newRow("unknown option") << QStringList{"--frob"} << "Unknown option 'frob'.";
    }
    void what_makes_no_sense_is_one_sentence() {
        QFETCH(QStringList, arguments);
        QTEST(parse(arguments).error, "sentence");
    }

    void help_goes_before_everything_else() {
        const auto parsed = parse({"--port", "x", "--help"});
        QCOMPARE(parsed.error, QString());
        QVERIFY(parsed.value.to_show.contains(QStringLiteral("--trigger")));
    }

 private:
    static base::result_of_t<torlan::options_t> parse(const QStringList& _arguments) {
        return parse_options(QStringList("torlan-config") + _arguments);
    }
};

QTEST_GUILESS_MAIN(tst_options_t)
#include "tst_options_t.moc"
