#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <atomic>
#include <functional>
#include <memory>

#include "utility/timer_debounce_t.h"

using debounce_t = utility::timer_debounce_t<>;

namespace {

constexpr int never_ms = 60000;

/// Runs @p _work in a thread of its own and waits for its end.
void elsewhere(const std::function<void()>& _work) {
    const std::unique_ptr<QThread> thread(QThread::create(_work));
    thread->start();
    QVERIFY(thread->wait());
}

}  // namespace

/// The debounce between threads: the timer's thread and others.
class tst_timer_debounce_threads : public QObject {
    Q_OBJECT

    std::unique_ptr<QObject> owner;
    std::atomic<int> runs{0};

    QTimer* timer() const { return owner->findChild<QTimer*>(); }

 private Q_SLOTS:
    void init() {
        owner = std::make_unique<QObject>();
        runs = 0;
    }

    void a_trigger_from_another_thread_is_posted() {
        QThread* thread = nullptr;
        debounce_t debounce(owner.get(), 0, [&] {
            thread = QThread::currentThread();
            ++runs;
        });
        elsewhere([&debounce] { debounce.trigger(); });
        QVERIFY(!timer()->isActive());
        QTRY_COMPARE(runs, 1);
        QCOMPARE(thread, QThread::currentThread());
    }

    void triggers_of_many_threads_run_the_action_once() {
        debounce_t debounce(owner.get(), 20, [this] { ++runs; });
        const auto burst = [&debounce] {
            for (int i = 0; i < 100; ++i) {
                debounce.trigger();
            }
        };
        const std::unique_ptr<QThread> one(QThread::create(burst));
        const std::unique_ptr<QThread> two(QThread::create(burst));
        one->start();
        two->start();
        QVERIFY(one->wait());
        QVERIFY(two->wait());
        QCoreApplication::processEvents();
        QVERIFY(debounce.isActive());
        QTRY_COMPARE(runs, 1);
        QVERIFY(!debounce.isActive());
    }

    void posted_triggers_count_for_the_limit() {
        debounce_t debounce(
            owner.get(), never_ms, [this] { ++runs; }, 3);
        elsewhere([&debounce] {
            for (int i = 0; i < 4; ++i) {
                debounce.trigger();
            }
        });
        QCOMPARE(runs, 0);
        QCoreApplication::processEvents();
        QCOMPARE(runs, 1);
        QVERIFY(!debounce.isActive());
    }

    void destruction_with_a_posted_trigger_pending_is_quiet() {
        auto debounce = std::make_unique<debounce_t>(owner.get(), 0, [this] { ++runs; });
        elsewhere([&debounce] { debounce->trigger(); });
        debounce.reset();
        QCoreApplication::processEvents();
        QCOMPARE(timer(), nullptr);
        QCoreApplication::processEvents();
        QCOMPARE(runs, 0);
    }

    void the_owner_may_go_with_a_posted_trigger_pending() {
        debounce_t debounce(owner.get(), 0, [this] { ++runs; });
        elsewhere([&debounce] { debounce.trigger(); });
        owner.reset();
        QCoreApplication::processEvents();
        QCOMPARE(runs, 0);
        elsewhere([&debounce] { debounce.trigger(); });
        QVERIFY(!debounce.isActive());
    }

    void destroyed_in_another_thread_it_leaves_the_timer_to_its_thread() {
        QPointer<QTimer> left;
        {
            auto debounce = std::make_unique<debounce_t>(owner.get(), 0, [this] { ++runs; });
            left = timer();
            debounce->trigger();
            elsewhere([&debounce] { debounce.reset(); });
        }
        QVERIFY(!left.isNull());
        QTRY_VERIFY(left.isNull());
        QCOMPARE(runs, 0);
    }

    void the_action_runs_in_the_owners_thread() {
        QThread worker;
        worker.start();
        auto* mine = new QObject;
        QThread* seen = nullptr;
        QSemaphore done;
        debounce_t debounce(mine, 0, [&] {
            seen = QThread::currentThread();
            done.release();
        });
        mine->moveToThread(&worker);
        debounce.trigger();
        QVERIFY(done.tryAcquire(1, 5000));
        QCOMPARE(seen, &worker);
        mine->deleteLater();
        worker.quit();
        QVERIFY(worker.wait());
    }
};

QTEST_GUILESS_MAIN(tst_timer_debounce_threads)
#include "tst_timer_debounce_threads.moc"
