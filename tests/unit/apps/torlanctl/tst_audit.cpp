#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QTest>

#include "audit/line_text.h"
#include "unit/apps/torlanctl/torlanctl_t.h"

namespace {

QByteArray line(const QString& _user, const QString& _element, qint64 _seconds_ago) {
    audit::entry_t entry;
    entry.time = QDateTime::currentMSecsSinceEpoch() - _seconds_ago * 1'000;
    entry.user = _user;
    entry.operation = "write";
    entry.element = _element;
    entry.result = "202";
    return audit::line_of(entry);
}

/// User and element of each line, in order.
QStringList words(const QString& _output) {
    QStringList found;
    for (const QString& text : _output.split('\n', Qt::SkipEmptyParts)) {
        found.append(text.section("  ", 1, 1) + ' ' + text.section(' ', 5, 5).chopped(1));
    }
    return found;
}

}  // namespace

class tst_audit : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        torlanctl = std::make_unique<torlanctl_t>();
        QVERIFY(QDir(torlanctl->data()).mkdir("logs"));
    }

    void lines_are_shown_in_order_and_by_filter_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("all") << QStringList()
                             << QStringList{"alice e-1", "bob e-2", "cli e-9", "alice e-3",
                                            "bob e-1"};
        QTest::newRow("a user") << QStringList{"--user", "alice"}
                                << QStringList{"alice e-1", "alice e-3"};
        QTest::newRow("joined") << QStringList{"--user=alice"}
                                << QStringList{"alice e-1", "alice e-3"};
        QTest::newRow("an element")
            << QStringList{"--element", "e-1"} << QStringList{"alice e-1", "bob e-1"};
        QTest::newRow("since") << QStringList{"--since", "10m"}
                               << QStringList{"alice e-3", "bob e-1"};
        QTest::newRow("all of them")
            << QStringList{"--since", "10m", "--user", "bob", "--element", "e-1"}
            << QStringList{"bob e-1"};
        QTest::newRow("nobody") << QStringList{"--user", "eve"} << QStringList();
    }
    void lines_are_shown_in_order_and_by_filter() {
        QFETCH(QStringList, options);
        put("logs/audit.2.log", line("alice", "e-1", 7'200));
        put("logs/audit.1.log", line("bob", "e-2", 3'600));
        put("logs/audit.log", line("alice", "e-3", 60) + line("bob", "e-1", 30));
        put("settings-audit.log", line("cli", "e-9", 1'800));
        const call_t call = (*torlanctl)(QStringList{"audit"} + options);
        QCOMPARE(call.error, QString());
        QCOMPARE(call.status, 0);
        QTEST(words(call.output), "shown");
    }

    void json_shows_the_lines_as_they_are() {
        const QByteArray text = line("alice", "e-3", 60) + line("bob", "e-1", 30);
        put("logs/audit.log", text);
        QCOMPARE((*torlanctl)({"audit", "--json"}).output, QString::fromUtf8(text));
    }

    void another_folder_of_logs_can_be_named() {
        QVERIFY(QDir(torlanctl->data()).mkdir("elsewhere"));
        put("elsewhere/audit.log", line("alice", "e-3", 60));
        const call_t call = (*torlanctl)({"audit", "--logs", torlanctl->data() + "/elsewhere"});
        QCOMPARE(words(call.output), QStringList{"alice e-3"});
    }

    void broken_lines_are_left_out_and_counted() {
        put("logs/audit.log", line("alice", "e-3", 60) + "{\"time\":\"20" + QByteArray(9, '\0') +
                                  '\n' + line("bob", "e-1", 30) + "{\"ti");
        const call_t call = (*torlanctl)({"audit"});
        QCOMPARE(words(call.output), (QStringList{"alice e-3", "bob e-1"}));
        QCOMPARE(call.error, QString("torlanctl: 2 lines are broken and left out."));
        QCOMPARE(call.status, 0);
    }

    void none_is_one_sentence() {
        const call_t call = (*torlanctl)({"audit"});
        QCOMPARE(call.status, 1);
        QCOMPARE(call.error, QString("torlanctl: There is no audit in %1/logs: no server has run "
                                     "here, or its log is elsewhere; see --logs DIR.")
                                 .arg(torlanctl->data()));
    }

    void one_that_cannot_be_read_is_one_sentence() {
        QVERIFY(QDir(torlanctl->data()).mkpath("logs/audit.log"));
        const call_t call = (*torlanctl)({"audit"});
        QCOMPARE(call.status, 1);
        QVERIFY(
            call.error.startsWith(QString("torlanctl: The audit %1/logs/audit.log cannot be read")
                                      .arg(torlanctl->data())));
        QVERIFY(!call.error.contains('\n'));
    }

    void wrong_call_ends_with_status_2_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown") << QStringList{"--usr", "x"}
                                 << "audit has no option \"--usr\". Did you mean --user?";
        QTest::newRow("no option")
            << QStringList{"alice"} << "Usage: torlanctl [--data DIR] audit [OPTIONS].";
        QTest::newRow("json with a value") << QStringList{"--json=1"} << "--json takes no value.";
        QTest::newRow("no value") << QStringList{"--user"} << "--user takes a value.";
        QTest::newRow("no time") << QStringList{"--since", "soon"}
                                 << "--since takes a time such as 10m, 2h, 3d or "
                                    "2026-01-31T12:00:00Z, not \"soon\".";
    }
    void wrong_call_ends_with_status_2() {
        QFETCH(QStringList, options);
        QFETCH(QString, error);
        const call_t call = (*torlanctl)(QStringList{"audit"} + options);
        QCOMPARE(call.status, 2);
        QCOMPARE(call.error, "torlanctl: " + error + " See torlanctl --help.");
    }

 private:
    void put(const QString& _name, const QByteArray& _text) const {
        QVERIFY(!torlanctl->write(_name, _text).isEmpty());
    }

    std::unique_ptr<torlanctl_t> torlanctl;
};

QTEST_GUILESS_MAIN(tst_audit)
#include "tst_audit.moc"
