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
        QCOMPARE(meter.take("a", 3000, 0ms), verdict_t::passes);
        QVERIFY(meter.take("a", 1, 1999ms) != verdict_t::passes);
        QCOMPARE(meter.take("a", 1, 2001ms), verdict_t::passes);
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
