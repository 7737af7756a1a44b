#include "options_t.h"

#include <QDir>
#include <QTest>

using torlan::parse_options;

class tst_options_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_given_is_the_shipped_default() {
        const auto parsed = parse({});
        QCOMPARE(parsed.error, QString());
        QCOMPARE(parsed.value.data, QDir(QStringLiteral("var")).absolutePath());
        QCOMPARE(parsed.value.port, quint16(1883));
        QCOMPARE(parsed.value.ws_port, quint16(0));
        QCOMPARE(parsed.value.config_port, quint16(4321));
        QCOMPARE(parsed.value.config_wait, 15);
        QVERIFY(!parsed.value.stdout_level && !parsed.value.file_level);
        QVERIFY(!parsed.value.log_size && !parsed.value.log_rotate);
        QVERIFY(!parsed.value.simulate);
        QCOMPARE(parsed.value.plugins, QString());
    }

    void bus_is_named_in_full_data() {
        QTest::addColumn<QString>("given");
        QTest::addColumn<bool>("is_taken");
        for (const char* taken : {"local:/run/knx", "local:/a b/c", "local:knx", "ip:host",
                                  "ip:192.168.1.5", "ip:host:6720", "ip:host:1", "ip:host:65535"}) {
            QTest::newRow(taken) << QString::fromLatin1(taken) << true;
        }
        for (const char* refused :
             {"demo", "local:", "local", "/run/knx", "ip:", "ip", "ip::6720",
              "ip:host:", "ip:host:0", "ip:host:65536", "ip:host:99999", "ip:host:1:2", "ip:host:x",
              "ip:a b", "ip:a/b", "local:/a:b", "usb:1", "LOCAL:/run/knx"}) {
            QTest::newRow(refused) << QString::fromLatin1(refused) << false;
        }
        QTest::newRow("empty") << QString() << false;
    }

    void bus_is_named_in_full() {
        QFETCH(QString, given);
        QFETCH(bool, is_taken);
        const auto parsed = parse({"--knx", given});
        QCOMPARE(parsed.error,
                 is_taken ? QString()
                          : "--knx takes local:PATH or ip:HOST[:PORT], not \"" + given + "\".");
        QCOMPARE(parsed.value.knx.url, is_taken ? given : QString());
    }

    void bus_is_treated_as_told_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<int>("rate");
        QTest::addColumn<bool>("read");
        QTest::newRow("not told") << QStringList() << 25 << true;
        QTest::newRow("on") << QStringList{"--knx-read", "on"} << 25 << true;
        QTest::newRow("off") << QStringList{"--knx-read=off"} << 25 << false;
        QTest::newRow("slowest") << QStringList{"--knx-rate", "1"} << 1 << true;
        QTest::newRow("fastest") << QStringList{"--knx-rate=100"} << 100 << true;
    }

    void bus_is_treated_as_told() {
        QFETCH(QStringList, given);
        const auto parsed = parse(given + QStringList{"--knx", "ip:host"});
        QCOMPARE(parsed.error, QString());
        QTEST(parsed.value.knx.telegrams_per_second, "rate");
        QTEST(parsed.value.knx.read, "read");
    }

    void wrong_treatment_is_refused_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QString>("sentence");
        const QString rate = "--knx-rate takes a number from 1 to 100, not \"%1\".";
        const QString read = "--knx-read takes on or off, not \"%1\".";
        for (const char* wrong : {"0", "101", "-1", "x", "", "2.5"}) {
            QTest::addRow("rate %s", wrong)
                << QStringList{"--knx-rate", wrong} << rate.arg(QString::fromLatin1(wrong));
        }
        for (const char* wrong : {"", "yes", "ON", "0", "offf"}) {
            QTest::addRow("read %s", wrong)
                << QStringList{"--knx-read", wrong} << read.arg(QString::fromLatin1(wrong));
        }
    }

    void wrong_treatment_is_refused() {
        QFETCH(QStringList, given);
        QTEST(parse(given).error, "sentence");
        QTEST(parse(given + QStringList{"--knx", "ip:host"}).error, "sentence");
    }

    void every_option_is_taken() {
        const auto parsed = parse({"--data",
                                   "/a/b",
                                   "--port",
                                   "2",
                                   "--ws-port=3",
                                   "--plugins",
                                   "p",
                                   "--logs",
                                   "l",
                                   "--user",
                                   "u",
                                   "--limit",
                                   "at-once=3",
                                   "--limit=value-bytes=7",
                                   "--simulate",
                                   "--log-level-std",
                                   "0",
                                   "--broker-program",
                                   "m",
                                   "--log-level-file",
                                   "6",
                                   "--log-size",
                                   "1024",
                                   "--log-rotate",
                                   "0",
                                   "--config-port",
                                   "4322",
                                   "--config-wait",
                                   "0",
                                   "--import",
                                   "i",
                                   "--sample",
                                   "s"});
        QCOMPARE(parsed.error, QString());
        QCOMPARE(parsed.value.data, QStringLiteral("/a/b"));
        QCOMPARE(parsed.value.port, quint16(2));
        QCOMPARE(parsed.value.ws_port, quint16(3));
        QCOMPARE(parsed.value.plugins, QStringLiteral("p"));
        QVERIFY(parsed.value.simulate);
        QCOMPARE(parsed.value.logs, QStringLiteral("l"));
        QCOMPARE(parsed.value.user, QStringLiteral("u"));
        QCOMPARE(parsed.value.limits.at_once, 3);
        QCOMPARE(parsed.value.limits.value_bytes, std::size_t(7));
        QCOMPARE(parsed.value.stdout_level, 0u);
        QCOMPARE(parsed.value.file_level, 6u);
        QCOMPARE(parsed.value.log_size, 1024u);
        QCOMPARE(parsed.value.log_rotate, 0u);
        QCOMPARE(parsed.value.config_port, quint16(4322));
        QCOMPARE(parsed.value.config_wait, 0);
        QCOMPARE(parsed.value.broker_program, QStringLiteral("m"));
        QCOMPARE(parsed.value.import_file, QStringLiteral("i"));
        QCOMPARE(parsed.value.sample_file, QStringLiteral("s"));
    }

    void what_makes_no_sense_is_one_sentence_that_names_it_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("named");
        QTest::newRow("port of letters") << QStringList{"--port", "x"} << "--port";
        QTest::newRow("port 0") << QStringList{"--port", "0"} << "--port";
        QTest::newRow("port too high") << QStringList{"--port", "65536"} << "65536";
        QTest::newRow("empty port") << QStringList{"--port="} << "--port";
        QTest::newRow("negative WebSockets port") << QStringList{"--ws-port", "-1"} << "--ws-port";
        QTest::newRow("one port twice") << QStringList{"--ws-port", "1883"} << "1883";
        QTest::newRow("no limit") << QStringList{"--limit", "speed=1"} << "speed";
        QTest::newRow("level") << QStringList{"--log-level-std", "7"} << "--log-level-std";
        QTest::newRow("no level") << QStringList{"--log-level-std", "-1"} << "--log-level-std";
        QTest::newRow("file level") << QStringList{"--log-level-file", "x"} << "--log-level-file";
        QTest::newRow("log size") << QStringList{"--log-size", "0"} << "--log-size";
        QTest::newRow("log rotation") << QStringList{"--log-rotate", "1001"} << "--log-rotate";
        QTest::newRow("settings' port") << QStringList{"--config-port", "0"} << "--config-port";
        QTest::newRow("settings' port is the broker's")
            << QStringList{"--config-port", "1883"} << "--config-port";
        QTest::newRow("settings' port is WebSockets'")
            << QStringList{"--ws-port", "4321"} << "--config-port";
        QTest::newRow("wait") << QStringList{"--config-wait", "3601"} << "--config-wait";
        QTest::newRow("unknown option") << QStringList{"--frob"} << "Unknown option 'frob'.";
        QTest::newRow("stray word") << QStringList{"word"} << "\"word\"";
        QTest::newRow("missing value") << QStringList{"--data"} << "data";
    }
    void what_makes_no_sense_is_one_sentence_that_names_it() {
        QFETCH(QStringList, arguments);
        QFETCH(QString, named);
        const QString error = parse(arguments).error;
        QVERIFY2(error.contains(named), qPrintable(error));
        QVERIFY(error.endsWith(QLatin1Char('.')) && !error.endsWith(QLatin1String("..")));
        QVERIFY(!error.contains(QLatin1Char('\n')));
    }

    void help_is_text_and_no_error() {
        const auto parsed = parse({"--help"});
        QCOMPARE(parsed.error, QString());
        QVERIFY(parsed.value.to_show.contains(QStringLiteral("--ws-port")));
    }

 private:
    static base::result_of_t<torlan::options_t> parse(const QStringList& _arguments) {
        return parse_options(QStringList("torlan-server") + _arguments);
    }
};

QTEST_GUILESS_MAIN(tst_options_t)
#include "tst_options_t.moc"
