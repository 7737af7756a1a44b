#include "broker/plugin/event_log_t.h"

#include <QTest>

#include "broker/plugin/report_field.h"
#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace broker::plugin;

namespace {

const visitor_t alice{"alice", "phone", "127.0.0.1"};

}  // namespace

class tst_event_log_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void field_data();
    void field();
    void field_is_cut();
    void event_is_one_line();
    void repeats_are_counted();
    void different_ones_are_told_apart();
    void what_finds_no_room_is_counted();
    void strangers_leave_room_for_others();
    void one_user_leaves_room_for_others();
    void taken_means_forgotten();
};

void tst_event_log_t::field_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("plain") << QByteArray("a/b-c$+#") << QByteArray("a/b-c$+#");
    QTest::newRow("empty") << QByteArray() << QByteArray("-");
    QTest::newRow("the sign of the empty one") << QByteArray("-") << QByteArray("%2d");
    QTest::newRow("blank and percent") << QByteArray("a b%") << QByteArray("a%20b%25");
    QTest::newRow("line and control") << QByteArray("a\nb\x7f") << QByteArray("a%0ab%7f");
    QTest::newRow("letter") << QByteArray("\xc3\xa4") << QByteArray("%c3%a4");
}

void tst_event_log_t::field() {
    QFETCH(QByteArray, text);
    const QByteArray made = QByteArray::fromStdString(report_field(text.constData()));
    QTEST(made, "field");
}

void tst_event_log_t::field_is_cut() {
    QCOMPARE(report_field(std::string(300, 'a')).size(), 256u);
    QCOMPARE(report_field("abc", 2), std::string("ab"));
}

void tst_event_log_t::event_is_one_line() {
    event_log_t log;
    QVERIFY(log.is_empty());
    log.note(event_kind_t::write_refused, alice, "local/x y", 7);
    QVERIFY(!log.is_empty());
    QCOMPARE(log.take(),
             std::string("event write-refused 1 7 7 alice phone 127.0.0.1 local/x%20y\n"));
}

void tst_event_log_t::repeats_are_counted() {
    event_log_t log;
    log.note(event_kind_t::failed, alice, "one", 7);
    log.note(event_kind_t::failed, alice, "two", 9);
    log.note(event_kind_t::failed, alice, "three", 12);
    QCOMPARE(log.take(), std::string("event failed 3 7 12 alice phone 127.0.0.1 one\n"));
}

void tst_event_log_t::different_ones_are_told_apart() {
    event_log_t log;
    log.note(event_kind_t::failed, alice, {}, 7);
    log.note(event_kind_t::refused, alice, {}, 7);
    log.note(event_kind_t::failed, {"bob", "phone", "127.0.0.1"}, {}, 7);
    log.note(event_kind_t::failed, {"alice", "tablet", "127.0.0.1"}, {}, 7);
    log.note(event_kind_t::failed, {"alice", "phone", "127.0.0.2"}, {}, 7);
    // Nobody makes two of them look like one by a clever name.
    log.note(event_kind_t::failed, {"a b", "c", "d"}, {}, 7);
    log.note(event_kind_t::failed, {"a", "b c", "d"}, {}, 7);
    const QByteArray text = QByteArray::fromStdString(log.take());
    QCOMPARE(text.count('\n'), 7);
    QCOMPARE(text.count("event failed 1 7 7"), 6);
}

void tst_event_log_t::what_finds_no_room_is_counted() {
    event_log_t log;
    for (int i = 0; i < 600; ++i) {
        log.note(event_kind_t::write_refused,
                 {"u" + std::to_string(i % 20), std::to_string(i), "x"}, {}, 7);
    }
    log.note(event_kind_t::write_refused, {"u0", "0", "x"}, {}, 7);
    const QByteArray text = QByteArray::fromStdString(log.take());
    QCOMPARE(text.count("event "), qsizetype(event_log_t::most_events));
    QVERIFY(text.contains("event write-refused 2 7 7 u0 0 x -\n"));
    QVERIFY(text.endsWith("\nlost 88\n"));
}

void tst_event_log_t::strangers_leave_room_for_others() {
    event_log_t log;
    for (int i = 0; i < 600; ++i) {
        log.note(event_kind_t::failed, {"x", std::to_string(i), "x"}, {}, 7);
    }
    log.note(event_kind_t::signed_in, alice, {}, 7);
    const QByteArray text = QByteArray::fromStdString(log.take());
    QVERIFY(text.contains("event signed-in 1 7 7 alice"));
    QCOMPARE(text.count("event failed"), qsizetype(event_log_t::most_of_strangers));
    QVERIFY(text.endsWith("\nlost 344\n"));
}

void tst_event_log_t::one_user_leaves_room_for_others() {
    event_log_t log;
    for (int i = 0; i < 600; ++i) {
        log.note(event_kind_t::signed_in, {"bob", std::to_string(i), "x"}, {}, 7);
    }
    log.note(event_kind_t::signed_in, alice, {}, 7);
    const QByteArray text = QByteArray::fromStdString(log.take());
    QVERIFY(text.contains("event signed-in 1 7 7 alice"));
    QCOMPARE(text.count(" bob "), qsizetype(event_log_t::most_of_user));
    // Room again after the report.
    log.note(event_kind_t::signed_in, {"bob", "1", "x"}, {}, 7);
    QVERIFY(log.take().find(" bob ") != std::string::npos);
}

void tst_event_log_t::taken_means_forgotten() {
    event_log_t log;
    for (int i = 0; i < 600; ++i) {
        log.note(event_kind_t::failed, {"x", std::to_string(i), "x"}, {}, 7);
    }
    log.take();
    QVERIFY(log.is_empty());
    log.note(event_kind_t::failed, {"x", "0", "x"}, {}, 8);
    QCOMPARE(log.take(), std::string("event failed 1 8 8 x 0 x -\n"));
}

QTEST_GUILESS_MAIN(tst_event_log_t)
#include "tst_event_log_t.moc"
