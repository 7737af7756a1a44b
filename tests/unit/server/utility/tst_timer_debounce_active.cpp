// When a debounce counts as waiting.
#include <QTest>
#include <memory>

#include "utility/timer_debounce_t.h"

using debounce_t = utility::timer_debounce_t<>;

namespace {
constexpr int never_ms = 60000;  ///< longer than any test runs
}

class tst_timer_debounce_active : public QObject {
    Q_OBJECT

    std::unique_ptr<QObject> owner;
    int runs = 0;

    QTimer* timer() const { return owner->findChild<QTimer*>(); }

 private Q_SLOTS:
    void init() {
        owner = std::make_unique<QObject>();
        runs = 0;
    }

    void outside_the_action_it_is_active_while_the_timer_runs() {
        const debounce_t debounce(owner.get(), never_ms, {});
        timer()->start();
        QVERIFY(debounce.isActive());
        timer()->stop();
        QVERIFY(!debounce.isActive());
    }

    void a_wait_that_is_stopped_from_outside_is_over_data() {
        QTest::addColumn<bool>("in_action");
        QTest::newRow("begun by a trigger") << false;
        QTest::newRow("begun by the action itself") << true;
    }
    void a_wait_that_is_stopped_from_outside_is_over() {
        QFETCH(const bool, in_action);
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(owner.get(), 0, [&] {
            if (++runs == 1 && in_action) {
                timer()->setInterval(never_ms);
                debounce->trigger();
            }
        });
        debounce->trigger();
        if (in_action) {
            QTRY_COMPARE(runs, 1);
            QVERIFY(debounce->isActive());
        }
        timer()->stop();
        QVERIFY(!debounce->isActive());
        debounce->trigger();
        QVERIFY(debounce->isActive());
    }

    void firing_by_hand_is_no_wait() {
        bool in_action = true;
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(owner.get(), never_ms,
                                                [&] { in_action = debounce->isActive(); });
        debounce->doFire();
        QVERIFY(!in_action);
    }

    void an_action_inside_the_action_leaves_it_active_data() {
        QTest::addColumn<bool>("by_hand");
        QTest::newRow("by the limit") << false;
        QTest::newRow("by hand") << true;
    }
    void an_action_inside_the_action_leaves_it_active() {
        QFETCH(const bool, by_hand);
        bool after = false;
        std::unique_ptr<debounce_t> debounce;
        debounce = std::make_unique<debounce_t>(
            owner.get(), 0,
            [&] {
                if (++runs > 1) {
                    return;
                }
                if (by_hand) {
                    debounce->doFire();
                } else {
                    debounce->trigger();
                    debounce->trigger();
                }
                after = debounce->isActive();
            },
            1);
        debounce->trigger();
        QTRY_COMPARE(runs, 2);
        QVERIFY(after);
        QVERIFY(!timer()->isActive());
        QVERIFY(!debounce->isActive());
    }
};

QTEST_GUILESS_MAIN(tst_timer_debounce_active)
#include "tst_timer_debounce_active.moc"
