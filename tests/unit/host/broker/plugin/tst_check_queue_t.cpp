#include "broker/plugin/check_queue_t.h"

#include <QTest>
#include <algorithm>

#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;

/// The queue and the lanes in it.
class tst_check_queue_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void names_are_served_in_turn();
    void same_password_waits_once();
    void full_lane_gives_a_place_away_by_lot();
    void too_many_names_drop_one_of_them();
    void stays_bounded_whatever_comes();
    void who_had_to_make_room_comes_first_the_next_time();
    void those_who_come_again_do_not_keep_the_others_waiting_for_ever();
};

void tst_check_queue_t::names_are_served_in_turn() {
    check_queue_t queue;
    for (int i = 0; i < 5; ++i) {
        QVERIFY(queue.push(check_of("flooded", i)).empty());
    }
    queue.push(check_of("alice", 100));
    queue.push(check_of("bob", 101));
    QStringList order;
    while (const auto next = queue.pop()) {
        order.append(QString::fromStdString(next->visitor.user));
    }
    QCOMPARE(order.size(), 7);
    QVERIFY(order.indexOf("alice") < 3 && order.indexOf("bob") < 3);
    QVERIFY(queue.is_empty());
}

void tst_check_queue_t::same_password_waits_once() {
    check_queue_t queue;
    queue.push(check_of("alice", 1));
    queue.push(check_of("alice", 1));
    QCOMPARE(queue.size(), 1u);
    QVERIFY(queue.pop());
    QVERIFY(!queue.pop());
    queue.push(check_of("alice", 1));
    QVERIFY(queue.pop());
}

void tst_check_queue_t::full_lane_gives_a_place_away_by_lot() {
    check_queue_t queue;
    int number = 0;
    for (; number < int(fair_lanes_t::most_in_lane); ++number) {
        QVERIFY(queue.push(check_of("alice", number)).empty());
    }
    const auto gone = queue.push(check_of("alice", number));
    QCOMPARE(gone.size(), 1u);
    QCOMPARE(gone[0].user, std::string("alice"));
    QVERIFY(queue.contains(digest_of(number)));
    QCOMPARE(queue.size(), fair_lanes_t::most_in_lane);
    // Nobody is safe for being there first, nobody is always the one to go.
    for (++number; number < 200; ++number) {
        queue.push(check_of("alice", number));
    }
    for (int first = 0; first < int(fair_lanes_t::most_in_lane); ++first) {
        QVERIFY(!queue.contains(digest_of(first)));
    }
}

void tst_check_queue_t::too_many_names_drop_one_of_them() {
    check_queue_t queue;
    for (int i = 0; i < int(fair_lanes_t::most_lanes); ++i) {
        QVERIFY(queue.push(check_of("u" + QByteArray::number(i), i)).empty());
    }
    QCOMPARE(queue.push(check_of("late", 10'000)).size(), 1u);
    QVERIFY(queue.contains(digest_of(10'000)));
    QCOMPARE(queue.size(), fair_lanes_t::most_lanes);
}

void tst_check_queue_t::stays_bounded_whatever_comes() {
    check_queue_t queue;
    for (int i = 0; i < 20'000; ++i) {
        queue.push(check_of("u" + QByteArray::number(i % 700), i));
    }
    // Both kinds of lanes may be full.
    QVERIFY(queue.size() <= 2 * fair_lanes_t::most_lanes * fair_lanes_t::most_in_lane);
    std::size_t popped = 0;
    const std::size_t waiting = queue.size();
    while (queue.pop()) {
        ++popped;
    }
    QCOMPARE(popped, waiting);
}

void tst_check_queue_t::who_had_to_make_room_comes_first_the_next_time() {
    check_queue_t queue;
    int number = 1;
    queue.push(check_of("alice", 0));
    for (; queue.contains(digest_of(0)); ++number) {
        queue.push(check_of("alice", number));
    }
    // The same password again, among many new ones.
    queue.push(check_of("alice", 0));
    QVERIFY(queue.pop()->digest == digest_of(0));
}

void tst_check_queue_t::those_who_come_again_do_not_keep_the_others_waiting_for_ever() {
    check_queue_t queue;
    const auto push_out = [&queue](int _number) {
        for (int other = 1'000 * (_number + 1); queue.contains(digest_of(_number)); ++other) {
            queue.push(check_of("alice", other));
        }
    };
    for (int i = 0; i < 8; ++i) {
        queue.push(check_of("alice", i));
        push_out(i);
    }
    for (int i = 0; i < 8; ++i) {
        queue.push(check_of("alice", i));
    }
    queue.push(check_of("bob", 90'000));
    int turns = 0;
    while (queue.contains(digest_of(90'000))) {
        queue.pop();
        ++turns;
    }
    QVERIFY(turns <= 8);
}

QTEST_GUILESS_MAIN(tst_check_queue_t)
#include "tst_check_queue_t.moc"
