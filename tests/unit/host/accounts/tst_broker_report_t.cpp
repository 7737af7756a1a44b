#include "accounts/broker_report_t.h"

#include <QTest>

using accounts::broker_event_t;
using accounts::broker_report_t;

class tst_broker_report_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void all_lines_are_read();
    void other_texts_are_no_report_data();
    void other_texts_are_no_report();
    void line_that_is_not_understood_is_left_out_data();
    void line_that_is_not_understood_is_left_out();
};

void tst_broker_report_t::all_lines_are_read() {
    const auto report = broker_report_t::parse(
        "report 12\n"
        "event write-refused 3 70 90 alice phone%201 127.0.0.1 a/%c3%a4\n"
        "event failed 1 80 80 - %2d /run/x -\n"
        "lost 7\n"
        "delete phone%0a1\n"
        "delete b\n");
    QVERIFY(report);
    QCOMPARE(report->number, 12u);
    const QList<broker_event_t> events{
        {"write-refused", 3, 70, 90, "alice", "phone 1", "127.0.0.1", QString::fromUtf8("a/ä")},
        {"failed", 1, 80, 80, "", "-", "/run/x", ""}};
    QVERIFY(report->events == events);
    QCOMPARE(report->lost, 7);
    QCOMPARE(report->sessions, (QStringList{"phone\n1", "b"}));
}

void tst_broker_report_t::other_texts_are_no_report_data() {
    QTest::addColumn<QByteArray>("text");
    for (const char* const text : {"", "\n", "report", "report x", "report 1 2", "report -1",
                                   "done 1", "report  1", "event failed 1 1 1 a b c d"}) {
        QTest::newRow(text) << QByteArray(text);
    }
}

void tst_broker_report_t::other_texts_are_no_report() {
    QFETCH(QByteArray, text);
    QVERIFY(!broker_report_t::parse(text));
}

void tst_broker_report_t::line_that_is_not_understood_is_left_out_data() {
    QTest::addColumn<QByteArray>("line");
    for (const char* const line :
         {"", "event", "event failed x 1 1 a b c d", "event failed 1 x 1 a b c d",
          "event failed 1 1 x a b c d", "event failed 1 1 1 a b c", "event failed 1 1 1 a b c d e",
          "lost", "lost 1 2", "delete", "delete a b", "hello"}) {
        QTest::newRow(line) << QByteArray(line);
    }
}

void tst_broker_report_t::line_that_is_not_understood_is_left_out() {
    QFETCH(QByteArray, line);
    const auto report = broker_report_t::parse("report 1\n" + line + "\ndelete x\n");
    QVERIFY(report && report->events.isEmpty() && report->lost == 0);
    QCOMPARE(report->sessions, QStringList{"x"});
}

QTEST_GUILESS_MAIN(tst_broker_report_t)
#include "tst_broker_report_t.moc"
