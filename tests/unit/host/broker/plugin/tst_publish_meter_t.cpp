#include "broker/plugin/publish_meter_t.h"

#include <QTest>

using namespace broker::plugin;
using namespace std::chrono_literals;
using verdict_t = publish_meter_t::verdict_t;

class tst_publish_meter_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_second_s_worth_passes_and_more_is_told_once_in_a_while() {
        publish_meter_t meter(2, 0);
        QCOMPARE(meter.take("a", 1, 0ms), verdict_t::passes);
        QCOMPARE(meter.take("a", 1, 0ms), verdict_t::passes);
        QCOMPARE(meter.take("a", 1, 0ms), verdict_t::stopped_and_told);
        QCOMPARE(meter.take("a", 1, 400ms), verdict_t::passes);  // on credit
        QCOMPARE(meter.take("a", 1, 401ms), verdict_t::stopped);
        QCOMPARE(meter.take("a", 1, 402ms), verdict_t::stopped);
        for (int i = 0; i < 3; ++i) {
            meter.take("a", 1, 6s);
        }
        QCOMPARE(meter.take("a", 1, 6s), verdict_t::stopped);
    }

    void each_user_has_its_own() {
        publish_meter_t meter(1, 0);
        QCOMPARE(meter.take("a", 1, 0ms), verdict_t::passes);
        QVERIFY(meter.take("a", 1, 0ms) != verdict_t::passes);
        QCOMPARE(meter.take("b", 1, 0ms), verdict_t::passes);
    }

    void bytes_count_too() {
        publish_meter_t meter(0, 1000);
        QCOMPARE(meter.take("a", 3999, 0ms), verdict_t::passes);  // a burst
        QCOMPARE(meter.take("a", 2001, 0ms), verdict_t::passes);  // on credit
        QVERIFY(meter.take("a", 1, 1999ms) != verdict_t::passes);
        QCOMPARE(meter.take("a", 1, 2001ms), verdict_t::passes);
    }

    void who_goes_on_and_on_is_sent_away_for_a_while_data() {
        QTest::addColumn<double>("messages");
        QTest::addColumn<double>("bytes");
        QTest::newRow("messages") << 10.0 << 0.0;
        QTest::newRow("bytes") << 0.0 << 1'000.0;
    }
    void who_goes_on_and_on_is_sent_away_for_a_while() {
        QFETCH(double, messages);
        QFETCH(double, bytes);
        publish_meter_t meter(messages, bytes);
        int taken = 0;
        while (meter.take("a", 100, 100s) != verdict_t::sent_away) {
            QVERIFY(++taken < 1'000);
        }
        QCOMPARE(taken, messages > 0 ? 50 : 80);
        QVERIFY(meter.is_away("a", 100s));
        QVERIFY(!meter.is_away("b", 100s));
        QVERIFY(meter.is_away("a", 104'999ms));
        QVERIFY(!meter.is_away("a", 105s));
        QCOMPARE(meter.take("a", 100, 105s), verdict_t::passes);
    }

    void a_little_too_much_sends_nobody_away() {
        publish_meter_t meter(10, 0);
        for (int i = 0; i < 1'000; ++i) {
            QVERIFY(meter.take("a", 1, 100s + i * 25ms) != verdict_t::sent_away);
        }
    }

    void without_limits_everything_passes() {
        publish_meter_t meter(0, 0);
        for (int i = 0; i < 100'000; ++i) {
            QCOMPARE(meter.take("a", 1'000'000, 0ms), verdict_t::passes);
        }
    }
};

QTEST_GUILESS_MAIN(tst_publish_meter_t)
#include "tst_publish_meter_t.moc"
