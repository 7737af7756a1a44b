#include <QElapsedTimer>
#include <QTest>
#include <array>
#include <memory>

#include "utility/timer_debounce_t.h"

using debounce_t = utility::timer_debounce_t<>;

namespace {
constexpr int never_ms = 60000;  ///< longer than any test runs
constexpr int short_ms = 30;
}  // namespace

class tst_timer_debounce_t : public QObject {
    Q_OBJECT

    std::unique_ptr<QObject> owner;
    int runs = 0;

    std::function<void()> counting() {
        return [this] { ++runs; };
    }
    QTimer* timer() const { return owner->findChild<QTimer*>(); }

 private Q_SLOTS:
    void init() {
        owner = std::make_unique<QObject>();
        runs = 0;
    }

    void the_timer_is_the_owners_single_shot_child() {
        const debounce_t debounce(owner.get(), never_ms, counting());
        QCOMPARE(owner->findChildren<QTimer*>().size(), 1);
        QCOMPARE(timer()->interval(), never_ms);
        QVERIFY(timer()->isSingleShot());
        QVERIFY(!timer()->isActive());
        QVERIFY(!debounce.isActive());
    }

    void a_burst_runs_the_action_once_after_the_last_trigger() {
        debounce_t debounce(owner.get(), short_ms, counting());
        QElapsedTimer since_last;
        for (int i = 0; i < 10; ++i) {
            debounce.trigger();
            since_last.start();
        }
        QCOMPARE(runs, 0);
        QTRY_COMPARE(runs, 1);
        QVERIFY2(since_last.elapsed() >= short_ms - 5, "fired before the wait was over");
        QVERIFY(!debounce.isActive());
        QVERIFY(!timer()->isActive());
    }

    void each_trigger_restarts_the_whole_wait() {
        debounce_t debounce(owner.get(), never_ms, counting());
        timer()->setTimerType(Qt::PreciseTimer);  // else the rest is rounded
        for (int i = 0; i < 10; ++i) {
            debounce.trigger();
            QTRY_VERIFY(timer()->remainingTime() < never_ms - 2);
            const int before = timer()->remainingTime();
            debounce.trigger();
            QVERIFY(timer()->remainingTime() > before);
        }
        QCOMPARE(runs, 0);
    }

    void every_burst_runs_the_action_again() {
        debounce_t debounce(owner.get(), 0, counting());
        debounce.trigger();
        QTRY_COMPARE(runs, 1);
        debounce.trigger();
        QTRY_COMPARE(runs, 2);
    }

    void it_is_active_from_the_trigger_until_the_action_has_run() {
        bool in_action = false;
        bool timer_in_action = true;
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(owner.get(), 0, [&] {
            in_action = debounce->isActive();
            timer_in_action = timer()->isActive();
            ++runs;
        });
        QVERIFY(!debounce->isActive());
        debounce->trigger();
        QVERIFY(debounce->isActive());
        QTRY_COMPARE(runs, 1);
        QVERIFY(in_action);
        QVERIFY(!timer_in_action);
        QVERIFY(!debounce->isActive());
    }

    void a_trigger_inside_the_action_starts_the_next_wait() {
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(owner.get(), 0, [&] {
            if (++runs < 3) {
                debounce->trigger();
            }
        });
        debounce->trigger();
        QTRY_COMPARE(runs, 3);
        QVERIFY(!debounce->isActive());
    }

    void it_stays_active_when_the_action_triggered_again() {
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(owner.get(), never_ms, [&] {
            ++runs;
            debounce->trigger();
        });
        debounce->doFire();
        QCOMPARE(runs, 1);
        QVERIFY(debounce->isActive());
        QVERIFY(timer()->isActive());
    }

    void with_a_limit_the_trigger_beyond_it_runs_the_action_at_once() {
        debounce_t debounce(owner.get(), never_ms, counting(), 3);
        for (int round = 1; round <= 2; ++round) {
            for (int i = 0; i < 3; ++i) {
                debounce.trigger();
                QCOMPARE(runs, round - 1);
                QVERIFY(debounce.isActive());
            }
            debounce.trigger();
            QCOMPARE(runs, round);
            QVERIFY(!timer()->isActive());
            QVERIFY(!debounce.isActive());
        }
    }

    void a_limit_of_one_lets_the_first_trigger_wait() {
        debounce_t debounce(owner.get(), never_ms, counting(), 1);
        debounce.trigger();
        QCOMPARE(runs, 0);
        debounce.trigger();
        QCOMPARE(runs, 1);
    }

    void without_a_limit_any_number_waits() {
        debounce_t debounce(owner.get(), never_ms, counting());
        for (int i = 0; i < 1000; ++i) {
            debounce.trigger();
        }
        QCOMPARE(runs, 0);
    }

    void the_count_begins_anew_with_each_wait() {
        debounce_t debounce(owner.get(), 0, counting(), 3);
        for (int round = 1; round <= 4; ++round) {
            debounce.trigger();
            debounce.trigger();
            QCOMPARE(runs, round - 1);
            QTRY_COMPARE(runs, round);
        }
    }

    void firing_by_hand_resets_the_count_and_leaves_the_wait() {
        debounce_t debounce(owner.get(), never_ms, counting(), 3);
        debounce.trigger();
        debounce.trigger();
        debounce.trigger();
        debounce.doFire();
        QCOMPARE(runs, 1);
        QVERIFY(debounce.isActive());
        debounce.trigger();
        debounce.trigger();
        debounce.trigger();
        QCOMPARE(runs, 1);
        debounce.trigger();
        QCOMPARE(runs, 2);
    }

    void the_action_may_fire_again_without_a_dead_lock() {
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(owner.get(), never_ms, [&] {
            if (++runs == 1) {
                debounce->doFire();
            }
        });
        debounce->doFire();
        QCOMPARE(runs, 2);
    }

    void without_an_action_firing_does_nothing() {
        debounce_t debounce(owner.get(), 0, {});
        debounce.trigger();
        QTRY_VERIFY(!debounce.isActive());
        debounce.doFire();
        QVERIFY(!debounce.isActive());
    }

    void destruction_takes_the_timer_along() {
        {
            debounce_t debounce(owner.get(), 0, counting());
            debounce.trigger();
        }
        QCOMPARE(timer(), nullptr);
        QCoreApplication::processEvents();
        QCOMPARE(runs, 0);
    }

    void it_survives_its_owner() {
        debounce_t debounce(owner.get(), 0, counting());
        debounce.trigger();
        owner.reset();
        QVERIFY(!debounce.isActive());
        debounce.trigger();
        QCoreApplication::processEvents();
        QCOMPARE(runs, 0);
        QVERIFY(!debounce.isActive());
    }

    void it_may_be_destroyed_inside_its_own_action_data() {
        QTest::addColumn<int>("limit");
        QTest::addColumn<bool>("by_hand");
        QTest::newRow("by the timer") << 0 << false;
        QTest::newRow("by the limit") << 1 << false;
        QTest::newRow("by hand") << 0 << true;
    }
    void it_may_be_destroyed_inside_its_own_action() {
        QFETCH(const int, limit);
        QFETCH(const bool, by_hand);
        // Larger than the function's own store, so that the sanitizers see a use after the
        // destruction.
        const QByteArray payload(200, 'x');
        const std::array<char, 64> ballast{};
        int seen = 0;
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(
            owner.get(), 0,
            [payload, ballast, &debounce, &seen] {
                debounce.reset();
                seen += static_cast<int>(payload.size()) + ballast.front();
            },
            limit);
        debounce_t* const raw = debounce.get();
        raw->trigger();
        if (limit > 0) {
            raw->trigger();
        }
        if (by_hand) {
            raw->doFire();
        }
        QTRY_COMPARE(seen, 200);
        QCOMPARE(debounce, nullptr);
        QCOMPARE(timer(), nullptr);
    }

    void its_owner_may_be_destroyed_inside_the_action() {
        debounce_t debounce(owner.get(), 0, [this] {
            ++runs;
            owner.reset();
        });
        debounce.trigger();
        QTRY_COMPARE(runs, 1);
        QVERIFY(!debounce.isActive());
    }
};

QTEST_GUILESS_MAIN(tst_timer_debounce_t)
#include "tst_timer_debounce_t.moc"
