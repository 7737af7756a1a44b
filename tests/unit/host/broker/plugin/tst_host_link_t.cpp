#include "broker/plugin/host_link_t.h"

#include <QTest>

#include "unit/host/broker/plugin/fake_port_t.h"
#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;

namespace {
const std::string report_topic = host_link_t::report_topic;
const std::string answer_topic = host_link_t::answer_topic;
}  // namespace

class tst_host_link_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void answers_go_to_whom_it_heard();
    void left_out_rows_are_told_a_few();
    void one_report_at_a_time();
    void another_connection_gets_what_was_not_acknowledged();
    void no_report_while_nobody_listens();

 private:
    fake_port_t port;
};

void tst_host_link_t::answers_go_to_whom_it_heard() {
    port.sent.clear();
    host_link_t link(&port);
    link.hear("host-1");
    link.answer(message_of("all 17", {}));
    link.hear("host-2");
    link.answer(message_of("all 18", {"nonsense"}));
    link.answer(control_message_t::parse("all 19\n"));
    QCOMPARE(port.sent.size(), 3u);
    QVERIFY(port.sent[0] == (fake_port_t::sent_t{"host-1", answer_topic, "done 17\n"}));
    QVERIFY(port.sent[1] ==
            (fake_port_t::sent_t{"host-2", answer_topic, "done 18\nline 2: unknown word\n"}));
    QVERIFY(port.sent[2] ==
            (fake_port_t::sent_t{"host-2", answer_topic, "refused 19 its end is missing\n"}));
}

void tst_host_link_t::left_out_rows_are_told_a_few() {
    port.sent.clear();
    host_link_t link(&port);
    link.hear("host");
    QByteArrayList rows;
    for (int i = 0; i < 1'000; ++i) {
        rows.append("nonsense");
    }
    link.answer(message_of("all 17", rows));
    QCOMPARE(QByteArray::fromStdString(port.sent.at(0).text).count('\n'), 17);
}

void tst_host_link_t::one_report_at_a_time() {
    port.sent.clear();
    host_link_t link(&port);
    QVERIFY(!link.is_free());
    link.hear("host");
    QVERIFY(link.is_free());
    link.report("one\n");
    QVERIFY(!link.is_free());
    QVERIFY(port.sent.at(0) == (fake_port_t::sent_t{"host", report_topic, "report 1\none\n"}));
    link.seen(7);
    link.seen(0);
    QVERIFY(!link.is_free());
    link.seen(1);
    QVERIFY(link.is_free());
    link.report("two\n");
    QVERIFY(port.sent.at(1) == (fake_port_t::sent_t{"host", report_topic, "report 2\ntwo\n"}));
}

void tst_host_link_t::another_connection_gets_what_was_not_acknowledged() {
    port.sent.clear();
    host_link_t link(&port);
    link.hear("host");
    link.report("one\n");
    link.hear("host");
    QCOMPARE(port.sent.size(), 1u);
    link.hear("host-2");
    QVERIFY(port.sent.at(1) == (fake_port_t::sent_t{"host-2", report_topic, "report 1\none\n"}));
    // The same name, but another connection.
    link.lose("host-2");
    link.hear("host-2");
    QCOMPARE(port.sent.size(), 3u);
    link.seen(1);
    link.hear("host-3");
    QCOMPARE(port.sent.size(), 3u);
}

void tst_host_link_t::no_report_while_nobody_listens() {
    port.sent.clear();
    host_link_t link(&port);
    link.hear("host");
    link.lose("another");
    QVERIFY(link.is_free());
    link.lose("host");
    QVERIFY(!link.is_free());
}

QTEST_GUILESS_MAIN(tst_host_link_t)
#include "tst_host_link_t.moc"
