#include <QTest>

#include "endpoint/outgoing_queue_t.h"

using comunication::outgoing_queue_t;
using comunication::outgoing_t;
using comunication::utility::qos_t;

namespace {
outgoing_t message(const QByteArray& _topic, const QByteArray& _payload = {}) {
    return {_topic, _payload, qos_t::exactly_once, false};
}
outgoing_t state(const QByteArray& _topic, const QByteArray& _payload) {
    return {_topic, _payload, qos_t::exactly_once, true};
}

QByteArray packet(const QByteArray& _functions) {
    return "{\"data\":{\"functions\":{" + _functions + "},\"name\":\"x\"}}";
}
}  // namespace

class tst_outgoing_queue_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void pop_gives_the_oldest_first();
    void push_refuses_more_messages_than_allowed();
    void push_refuses_more_bytes_than_allowed();
    void push_takes_again_after_pop();
    void a_waiting_state_gives_way_data();
    void a_waiting_state_gives_way();
    void nothing_crosses_a_change_of_the_subscription();
    void answers_find_room_when_states_do_not();
    void marks_find_room_always();
    void what_was_sent_gives_way_to_nothing();
};

void tst_outgoing_queue_t::pop_gives_the_oldest_first() {
    outgoing_queue_t queue(10, 1'000);
    QVERIFY(queue.push(message("a")) && queue.push(message("b")));
    QCOMPARE(queue.pop().topic, QByteArray("a"));
    QCOMPARE(queue.pop().topic, QByteArray("b"));
    QVERIFY(queue.is_empty());
}

void tst_outgoing_queue_t::push_refuses_more_messages_than_allowed() {
    outgoing_queue_t queue(2, 1'000);
    QVERIFY(queue.push(state("a", "1")) && queue.push(state("b", "1")));
    QVERIFY(!queue.push(state("c", "1")));
    QCOMPARE(queue.size(), std::size_t(2));
}

void tst_outgoing_queue_t::push_refuses_more_bytes_than_allowed() {
    outgoing_queue_t queue(100, 10);
    QVERIFY(queue.push(state("1234", "5678")));
    QVERIFY(!queue.push(state("12", "3")));
    QVERIFY(queue.push(state("1", "2")));
    QVERIFY(!queue.push(state("3", {})));
    QCOMPARE(queue.bytes(), std::size_t(10));
}

void tst_outgoing_queue_t::push_takes_again_after_pop() {
    outgoing_queue_t queue(1, 4);
    QVERIFY(queue.push(message("1234")));
    queue.pop();
    QCOMPARE(queue.bytes(), std::size_t(0));
    QVERIFY(queue.push(message("5678")));
}

void tst_outgoing_queue_t::a_waiting_state_gives_way_data() {
    QTest::addColumn<QByteArray>("waiting");
    QTest::addColumn<QByteArray>("next");
    QTest::addColumn<QList<QByteArray>>("sent");
    const QByteArray one = packet("\"a\":1");
    const QByteArray other = packet("\"b\":1");
    const QByteArray both = packet("\"a\":2,\"b\":2");
    const QByteArray deletion;
    using list_t = QList<QByteArray>;
    QTest::newRow("the same again") << one << one << list_t{one};
    QTest::newRow("another value") << one << packet("\"a\":3") << list_t{packet("\"a\":3")};
    QTest::newRow("all of its functions") << one << both << list_t{both};
    QTest::newRow("not all of its functions") << both << one << list_t{both, one};
    QTest::newRow("other functions") << one << other << list_t{one, other};
    QTest::newRow("its deletion") << both << deletion << list_t{deletion};
    QTest::newRow("a deletion to a state") << deletion << one << list_t{deletion, one};
    QTest::newRow("a deletion to a deletion") << deletion << deletion << list_t{deletion};
    QTest::newRow("no state") << QByteArray("{\"state\":\"online\"}")
                              << QByteArray("{\"state\":\"offline\"}")
                              << list_t{"{\"state\":\"online\"}", "{\"state\":\"offline\"}"};
    QTest::newRow("less than its data")
        << QByteArray("{\"data\":{\"functions\":{},\"name\":\"x\"}}")
        << QByteArray("{\"data\":{\"functions\":{}}}")
        << list_t{"{\"data\":{\"functions\":{},\"name\":\"x\"}}", "{\"data\":{\"functions\":{}}}"};
}

void tst_outgoing_queue_t::a_waiting_state_gives_way() {
    QFETCH(QByteArray, waiting);
    QFETCH(QByteArray, next);
    outgoing_queue_t queue(10, 1'000);
    QVERIFY(queue.push(state("first", "{}")) && queue.push(state("t", waiting)));
    QVERIFY(queue.push(state("between", "{}")) && queue.push(state("t", next)));
    QList<QByteArray> sent;
    std::size_t bytes = queue.bytes();
    while (!queue.is_empty()) {
        const outgoing_t message = queue.pop();
        bytes -= std::size_t(message.topic.size() + message.payload.size());
        sent += message.topic == "t" ? QList{message.payload} : QList<QByteArray>();
    }
    QTEST(sent, "sent");
    QCOMPARE(bytes, std::size_t(0));
    QCOMPARE(queue.bytes(), std::size_t(0));
}

void tst_outgoing_queue_t::nothing_crosses_a_change_of_the_subscription() {
    outgoing_queue_t queue(10, 1'000);
    QVERIFY(queue.push(state("t", packet("\"a\":1"))));
    QVERIFY(queue.push({.topic = "#", .payload = {}, .kind = outgoing_t::kind_t::subscribe}));
    QVERIFY(queue.push(state("t", packet("\"a\":2"))) && queue.push(state("t", {})));
    QCOMPARE(queue.pop().payload, packet("\"a\":1"));
    QCOMPARE(queue.pop().topic, QByteArray("#"));
    QCOMPARE(queue.pop().payload, QByteArray());
    QVERIFY(queue.is_empty());
}

void tst_outgoing_queue_t::answers_find_room_when_states_do_not() {
    outgoing_queue_t queue(2, 1'000);
    QVERIFY(queue.push(state("a", "{}")) && queue.push(state("b", "{}")));
    QVERIFY(!queue.push(state("c", "{}")) && !queue.push(state("d", {})));
    QVERIFY(queue.push(message("answer")) && queue.push(message("answer")));
    QVERIFY(!queue.push(message("answer")));
    QCOMPARE(queue.size(), std::size_t(4));
}

void tst_outgoing_queue_t::marks_find_room_always() {
    outgoing_queue_t queue(0, 0);
    QVERIFY(queue.push({.topic = {}, .payload = {}, .kind = outgoing_t::kind_t::mark}));
    QVERIFY(queue.pop().kind == outgoing_t::kind_t::mark);
}

void tst_outgoing_queue_t::what_was_sent_gives_way_to_nothing() {
    outgoing_queue_t queue(10, 1'000);
    QVERIFY(queue.push(state("t", {})) && queue.push(state("u", "{}")));
    queue.pop();
    QVERIFY(queue.push(state("t", {})));
    QCOMPARE(queue.pop().topic, QByteArray("u"));
    QCOMPARE(queue.pop().topic, QByteArray("t"));
}

QTEST_GUILESS_MAIN(tst_outgoing_queue_t)
#include "tst_outgoing_queue_t.moc"
