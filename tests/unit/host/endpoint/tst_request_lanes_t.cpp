#include <QElapsedTimer>
#include <QTest>

#include "endpoint/request_lanes_t.h"

using comunication::request_lanes_t;
using comunication::request_limits_t;
using comunication::request_t;

class tst_request_lanes_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void users_are_served_in_turn_and_each_in_order() {
        request_lanes_t lanes{request_limits_t{}};
        for (const char* each : {"a1", "a2", "a3", "b1", "c1", "b2"}) {
            QVERIFY(lanes.push(request(each)));
        }
        QCOMPARE(taken(lanes), (QStringList{"a1", "b1", "c1", "a2", "b2", "a3"}));
        QCOMPARE(lanes.bytes(), std::size_t(0));
    }

    void a_full_lane_leaves_room_for_the_others() {
        request_limits_t limits;
        limits.waiting_requests = 2;
        request_lanes_t lanes(limits);
        QVERIFY(lanes.push(request("a1")));
        QVERIFY(lanes.push(request("a2")));
        QVERIFY(!lanes.push(request("a3")));
        QVERIFY(lanes.push(request("b1")));
        QCOMPARE(taken(lanes), (QStringList{"a1", "b1", "a2"}));
        QVERIFY(lanes.push(request("a4")));
    }

    void bytes_are_bounded_for_each_and_for_all() {
        request_limits_t limits;
        limits.waiting_bytes = 100;
        limits.waiting_bytes_of_all = 150;
        request_lanes_t lanes(limits);
        QVERIFY(lanes.push(request("a1", 98)));
        QVERIFY(!lanes.push(request("a2")));
        QVERIFY(!lanes.push(request("b1", 50)));
        QVERIFY(lanes.push(request("b2", 48)));
        QVERIFY(!lanes.push(request("c1")));
        QVERIFY(lanes.pop());
        QVERIFY(lanes.push(request("c2")));
    }

    void nobody_has_two_turns_at_a_time() {
        request_lanes_t lanes{request_limits_t{}};
        for (const char* each : {"a1", "a2", "b1"}) {
            QVERIFY(lanes.push(request(each)));
        }
        QCOMPARE(lanes.pop()->topic, QStringLiteral("a1"));
        QCOMPARE(lanes.pop()->topic, QStringLiteral("b1"));
        QVERIFY(!lanes.pop());
        QVERIFY(lanes.push(request("b2")));
        QVERIFY(!lanes.pop());
        lanes.release("b");
        QCOMPARE(lanes.pop()->topic, QStringLiteral("b2"));
        lanes.release("b");
        QVERIFY(!lanes.pop());
        lanes.release("a");
        lanes.release("a");
        QCOMPARE(lanes.pop()->topic, QStringLiteral("a2"));
        QVERIFY(!lanes.pop());
    }

    void whose_turn_it_is_may_give_more_that_fits() {
        request_lanes_t lanes{request_limits_t{}};
        for (const char* each : {"a1", "a22", "a3", "b11"}) {
            QVERIFY(lanes.push(request(each)));
        }
        const auto is_long = [](const request_t& _one) { return _one.topic.size() > 2; };
        QVERIFY(!lanes.pop_more("a", is_long));  // nobody's turn
        QCOMPARE(lanes.pop()->topic, QStringLiteral("a1"));
        QCOMPARE(lanes.pop_more("a", is_long)->topic, QStringLiteral("a22"));
        QVERIFY(!lanes.pop_more("a", is_long));
        QVERIFY(!lanes.pop_more("b", is_long));
        lanes.release("a");
        QCOMPARE(taken(lanes), (QStringList{"b11", "a3"}));
        QCOMPARE(lanes.bytes(), std::size_t(0));
    }

    void clear_makes_room() {
        request_limits_t limits;
        limits.waiting_requests = 1;
        request_lanes_t lanes(limits);
        QVERIFY(lanes.push(request("a1")));
        lanes.clear();
        QVERIFY(!lanes.pop());
        QVERIFY(lanes.push(request("a2")));
        QCOMPARE(taken(lanes), QStringList{"a2"});
    }

    void ten_thousand_users_cost_no_search() {
        request_lanes_t lanes{request_limits_t{}};
        const auto pass = [&lanes](int _users) {
            QElapsedTimer clock;
            clock.start();
            for (int i = 0; i < 20'000; ++i) {
                request_t one = request("x");
                one.levels.user = QString::number(i % _users);
                lanes.push(one);
            }
            while (const auto next = lanes.pop()) {
                lanes.release(next->levels.user);
            }
            return clock.nsecsElapsed();
        };
        pass(10'000);
        const qint64 few = pass(100);
        const qint64 many = pass(10'000);
        QVERIFY2(many < 20 * few, qPrintable(QStringLiteral("%1 : %2").arg(many).arg(few)));
    }

 private:
    /// The user is the first letter; the topic is @p _name.
    static request_t request(const char* _name, int _bytes = 0) {
        request_t made;
        made.levels.user = QChar::fromLatin1(_name[0]);
        made.topic = QString::fromLatin1(_name);
        made.payload = QByteArray(_bytes, 'x');
        return made;
    }

    static QStringList taken(request_lanes_t& _lanes) {
        QStringList topics;
        while (const auto next = _lanes.pop()) {
            topics += next->topic;
            _lanes.release(next->levels.user);
        }
        return topics;
    }
};

QTEST_GUILESS_MAIN(tst_request_lanes_t)
#include "tst_request_lanes_t.moc"
