#include "drivers/driver/capability/call_lifetime_t.h"

#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <atomic>
#include <memory>

using interfaces::call_lifetime_t;

class tst_call_lifetime_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_call_runs_while_the_object_lives() {
        call_lifetime_t lifetime;
        int calls = 0;
        QVERIFY(lifetime.run([&calls] { ++calls; }));
        QVERIFY(lifetime.run([&calls] { ++calls; }));
        QCOMPARE(calls, 2);
    }

    void a_call_after_the_end_does_nothing() {
        call_lifetime_t lifetime;
        lifetime.end();
        lifetime.end();
        int calls = 0;
        QVERIFY(!lifetime.run([&calls] { ++calls; }));
        QCOMPARE(calls, 0);
    }

    void the_end_waits_for_a_running_call() {
        call_lifetime_t lifetime;
        QSemaphore inside;
        QSemaphore leave;
        std::atomic<bool> done{false};
        const std::unique_ptr<QThread> caller(QThread::create([&] {
            lifetime.run([&] {
                inside.release();
                leave.acquire();
                done = true;
            });
        }));
        caller->start();
        inside.acquire();
        const std::unique_ptr<QThread> releaser(QThread::create([&leave] {
            QThread::yieldCurrentThread();
            leave.release();
        }));
        releaser->start();
        lifetime.end();
        QVERIFY(done);
        QVERIFY(caller->wait() && releaser->wait());
    }

    void calls_of_several_threads_run_at_the_same_time() {
        call_lifetime_t lifetime;
        QSemaphore inside;
        QSemaphore leave;
        const std::unique_ptr<QThread> other(QThread::create([&] {
            lifetime.run([&] {
                inside.release();
                leave.acquire();
            });
        }));
        other->start();
        inside.acquire();
        QVERIFY(lifetime.run([&leave] { leave.release(); }));
        QVERIFY(other->wait());
    }
};

QTEST_GUILESS_MAIN(tst_call_lifetime_t)
#include "tst_call_lifetime_t.moc"
