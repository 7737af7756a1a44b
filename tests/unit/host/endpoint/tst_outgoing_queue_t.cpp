#include <QTest>

#include "endpoint/outgoing_queue_t.h"

using comunication::outgoing_queue_t;
using comunication::outgoing_t;
using comunication::utility::qos_t;

namespace {
outgoing_t message(const QByteArray& _topic, const QByteArray& _payload = {}) {
    return {_topic, _payload, qos_t::exactly_once, false};
}
}  // namespace

class tst_outgoing_queue_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void pop_gives_the_oldest_first();
    void push_refuses_more_messages_than_allowed();
    void push_refuses_more_bytes_than_allowed();
    void push_takes_again_after_pop();
    void clear_forgets_everything();
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
    QVERIFY(queue.push(message("a")) && queue.push(message("b")));
    QVERIFY(!queue.push(message("c")));
    QCOMPARE(queue.size(), std::size_t(2));
}

void tst_outgoing_queue_t::push_refuses_more_bytes_than_allowed() {
    outgoing_queue_t queue(100, 10);
    QVERIFY(queue.push(message("1234", "5678")));
    QVERIFY(!queue.push(message("123")));
    QVERIFY(queue.push(message("12")));
    QVERIFY(!queue.push(message("1")));
    QCOMPARE(queue.bytes(), std::size_t(10));
}

void tst_outgoing_queue_t::push_takes_again_after_pop() {
    outgoing_queue_t queue(1, 4);
    QVERIFY(queue.push(message("1234")));
    queue.pop();
    QCOMPARE(queue.bytes(), std::size_t(0));
    QVERIFY(queue.push(message("5678")));
}

void tst_outgoing_queue_t::clear_forgets_everything() {
    outgoing_queue_t queue(1, 4);
    QVERIFY(queue.push(message("1234")));
    queue.clear();
    QVERIFY(queue.is_empty());
    QVERIFY(queue.push(message("5678")));
}

QTEST_GUILESS_MAIN(tst_outgoing_queue_t)
#include "tst_outgoing_queue_t.moc"
