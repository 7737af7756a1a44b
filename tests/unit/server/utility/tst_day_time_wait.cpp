#include <QTest>

#include "utility/day_time_wait.h"

namespace {

/// A clock that goes on by one step at each look at it.
class stepping_clock_t {
 public:
    stepping_clock_t(const QTime& _start, int _step_ms) : time(_start), step_ms(_step_ms) {}

    QTime operator()() {
        const QTime told = time;
        time = time.addMSecs(step_ms);
        return told;
    }

 private:
    QTime time;
    int step_ms;
};

}  // namespace

class tst_day_time_wait : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void events_are_served_until_the_time_is_reached_data() {
        QTest::addColumn<QTime>("start");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<int>("served");

        QTest::newRow("three looks a second") << QTime(12, 0) << 3 << 5;
        QTest::newRow("nothing to wait for") << QTime(12, 0) << 0 << 0;
        QTest::newRow("in the past") << QTime(12, 0) << -5 << 0;
        QTest::newRow("just before midnight") << QTime(23, 59, 50) << 9 << 17;
        QTest::newRow("behind midnight ends at once") << QTime(23, 59, 58) << 2 << 0;
        QTest::newRow("a whole day ends at once") << QTime(12, 0) << 24 * 3600 << 0;
    }

    void events_are_served_until_the_time_is_reached() {
        QFETCH(const QTime, start);
        QFETCH(const int, seconds);
        QFETCH(const int, served);

        int in_seconds = 0;
        stepping_clock_t clock(start, 500);
        utility::serve_seconds(seconds, std::ref(clock), [&in_seconds]() { ++in_seconds; });
        QCOMPARE(in_seconds, served);

        int in_milliseconds = 0;
        stepping_clock_t same(start, 500);
        utility::serve_milliseconds(seconds * 1000, std::ref(same),
                                    [&in_milliseconds]() { ++in_milliseconds; });
        QCOMPARE(in_milliseconds, served);
    }

    void a_wait_runs_on_to_its_last_millisecond() {
        int served = 0;
        stepping_clock_t clock(QTime(12, 0), 1);
        utility::serve_milliseconds(10, std::ref(clock), [&served]() { ++served; });
        QCOMPARE(served, 9);  // the first look fixed the end
    }
};

QTEST_GUILESS_MAIN(tst_day_time_wait)
#include "tst_day_time_wait.moc"
