#include "retained_sweep_t.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;
using torlan::retained_sweep_t;

class tst_retained_sweep_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_burst_of_changes_gives_one_sweep() {
        retained_sweep_t sweep(20ms);
        QSignalSpy due(&sweep, &retained_sweep_t::due);
        for (int i = 0; i < 5; ++i) {
            sweep.trigger();
        }
        QVERIFY(due.wait());
        QVERIFY(!due.wait(60));
        QCOMPARE(due.size(), 1);
    }

    void every_change_starts_the_interval_again() {
        retained_sweep_t sweep(200ms);
        QSignalSpy due(&sweep, &retained_sweep_t::due);
        sweep.trigger();
        QVERIFY(!due.wait(100));
        QElapsedTimer since_last;
        since_last.start();
        sweep.trigger();
        QVERIFY(due.wait());
        QVERIFY(since_last.elapsed() >= 180);
    }

    void changes_without_end_put_it_off_no_longer_than_three_intervals() {
        retained_sweep_t sweep(100ms);
        QSignalSpy due(&sweep, &retained_sweep_t::due);
        QTimer changes;
        connect(&changes, &QTimer::timeout, &sweep, &retained_sweep_t::trigger);
        changes.start(20ms);
        QElapsedTimer since_first;
        since_first.start();
        QVERIFY(due.wait());
        QVERIFY(since_first.elapsed() >= 280);
        QVERIFY(due.wait());
    }

    void nothing_changed_nothing_is_due() {
        retained_sweep_t sweep(1ms);
        QSignalSpy due(&sweep, &retained_sweep_t::due);
        QVERIFY(!due.wait(50));
    }

    void the_shipped_interval_outlasts_the_driver_s_debounce() {
        QVERIFY(retained_sweep_t::after_debounce > 10s);
    }
};

QTEST_GUILESS_MAIN(tst_retained_sweep_t)
#include "tst_retained_sweep_t.moc"
