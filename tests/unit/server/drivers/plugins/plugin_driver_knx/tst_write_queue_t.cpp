#include <QTest>

#include "drivers/plugins/plugin_driver_knx/write_queue_t.h"

using namespace knx;
using taken_t = write_queue_t::taken_t;

class tst_write_queue_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void order_is_kept();
    void newer_state_takes_the_place_of_the_older();
    void steps_are_never_replaced();
    void state_does_not_overtake_a_step();
    void state_behind_a_sent_one_waits_anew();
    void state_behind_a_step_is_replaced_when_the_step_is_sent();
    void full_queue_refuses();
    void cleared_queue_begins_anew();
};

namespace {

telegram_t telegram(int _address, int _value) {
    return {0, group_address_t(quint16(_address)), command_t::write, QByteArray(1, char(_value)),
            true};
}

QStringList taken(write_queue_t& _queue) {
    QStringList all;
    while (const auto next = _queue.take()) {
        all.append(QStringLiteral("%1=%2").arg(next->destination.raw()).arg(int(next->data[0])));
    }
    return all;
}

}  // namespace

void tst_write_queue_t::order_is_kept() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), true), taken_t::added);
    QCOMPARE(queue.push(telegram(2, 2), false), taken_t::added);
    QCOMPARE(queue.push(telegram(3, 3), true), taken_t::added);
    QCOMPARE(taken(queue), QStringList({"1=1", "2=2", "3=3"}));
    QVERIFY(!queue.take());
}

void tst_write_queue_t::newer_state_takes_the_place_of_the_older() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), true), taken_t::added);
    QCOMPARE(queue.push(telegram(2, 2), true), taken_t::added);
    QCOMPARE(queue.push(telegram(1, 3), true), taken_t::replaced);
    QCOMPARE(queue.push(telegram(1, 4), true), taken_t::replaced);
    QCOMPARE(taken(queue), QStringList({"1=4", "2=2"}));
}

void tst_write_queue_t::steps_are_never_replaced() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), false), taken_t::added);
    QCOMPARE(queue.push(telegram(1, 1), false), taken_t::added);
    QCOMPARE(taken(queue), QStringList({"1=1", "1=1"}));
}

void tst_write_queue_t::state_does_not_overtake_a_step() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), true), taken_t::added);
    QCOMPARE(queue.push(telegram(1, 2), false), taken_t::added);
    QCOMPARE(queue.push(telegram(1, 3), true), taken_t::added);
    QCOMPARE(taken(queue), QStringList({"1=1", "1=2", "1=3"}));
}

void tst_write_queue_t::state_behind_a_sent_one_waits_anew() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), true), taken_t::added);
    QCOMPARE(queue.push(telegram(2, 2), true), taken_t::added);
    QCOMPARE(int(queue.take()->data[0]), 1);
    QCOMPARE(queue.push(telegram(1, 3), true), taken_t::added);
    QCOMPARE(queue.push(telegram(2, 4), true), taken_t::replaced);
    QCOMPARE(taken(queue), QStringList({"2=4", "1=3"}));
}

void tst_write_queue_t::state_behind_a_step_is_replaced_when_the_step_is_sent() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), false), taken_t::added);
    QCOMPARE(queue.push(telegram(1, 2), true), taken_t::added);
    QCOMPARE(int(queue.take()->data[0]), 1);
    QCOMPARE(queue.push(telegram(1, 3), true), taken_t::replaced);
    QCOMPARE(taken(queue), QStringList({"1=3"}));
}

void tst_write_queue_t::full_queue_refuses() {
    write_queue_t queue(2);
    QCOMPARE(queue.push(telegram(1, 1), true), taken_t::added);
    QCOMPARE(queue.push(telegram(2, 2), true), taken_t::added);
    QCOMPARE(queue.push(telegram(3, 3), true), taken_t::full);
    QCOMPARE(queue.push(telegram(2, 4), true), taken_t::replaced);
    QCOMPARE(taken(queue), QStringList({"1=1", "2=4"}));
}

void tst_write_queue_t::cleared_queue_begins_anew() {
    write_queue_t queue(10);
    QCOMPARE(queue.push(telegram(1, 1), true), taken_t::added);
    queue.clear();
    QVERIFY(queue.is_empty());
    QCOMPARE(queue.push(telegram(1, 2), true), taken_t::added);
    QCOMPARE(taken(queue), QStringList({"1=2"}));
}

QTEST_GUILESS_MAIN(tst_write_queue_t)
#include "tst_write_queue_t.moc"
