// IComunication: who holds the endpoint's lock, and who waits for it.
#include <QTest>
#include <functional>

#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "fakes/endpoint_thread_t.h"
#include "kit/waiting_call_t.h"
#include "logs/classlogs.h"

using comunication::protoserver_t;

namespace {

/// A driver that opens its endpoint's lock.
class probe_t : public interfaces::IComunication {
 public:
    ~probe_t() override { end_calls(); }
    bool finalize_comunication_initialization() override {
        held_when_told = held();
        return true;
    }
    void init_comunication_event(bool) override {}

    /// "" or who holds the lock: "readers" or "writer".
    QString held() {
        if (lock.tryLockForWrite()) {
            lock.unlock();
            return {};
        }
        if (lock.tryLockForRead()) {
            lock.unlock();
            return QStringLiteral("readers");
        }
        return QStringLiteral("writer");
    }

    using IComunication::comunication;
    using IComunication::Comunication;
    using IComunication::lock;

    QString held_when_told = QStringLiteral("not told");
};

/// Asks at each line who holds the lock.
class asking_logger_t : public utility::logs::classlogs {
 public:
    explicit asking_logger_t(probe_t* _driver) : driver(_driver) { setInstance(this); }
    ~asking_logger_t() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(asking_logger_t)

    void log_asynch(const QString& _message, int, const QString&, const QString&, int) override {
        lines.append(_message + QStringLiteral(": ") + driver->held());
    }

    QStringList lines;

 private:
    probe_t* driver;
};

}  // namespace

class tst_IComunication_locks : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_call_runs_under_the_read_lock() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        QString held;
        driver.Comunication([&driver, &held](protoserver_t*) { held = driver.held(); });
        endpoint.drain();
        QCOMPARE(held, QStringLiteral("readers"));
        QCOMPARE(driver.held(), QString());
    }

    void setting_an_endpoint_waits_for_the_running_call() {
        fakes::endpoint_thread_t first;
        fakes::scripted_endpoint_t second;
        probe_t driver;
        driver.init_comunication(first.get());
        QSemaphore inside;
        QSemaphore gate;
        protoserver_t* seen = nullptr;
        driver.Comunication([&](protoserver_t*) {
            inside.release();
            gate.acquire();
            seen = driver.comunication.load();
        });
        inside.acquire();
        kit::waiting_call_t setting([&] { driver.init_comunication(&second); });
        const bool waited = setting.waits();
        gate.release();
        setting.finish();
        first.drain();
        QVERIFY(waited);
        QCOMPARE(seen, first.get());
        QCOMPARE(driver.Comunication(), &second);
    }

    void setting_an_endpoint_waits_for_a_reader() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        driver.lock.lockForRead();
        kit::waiting_call_t setting([&] { driver.init_comunication(&endpoint); });
        const bool waited = setting.waits();
        protoserver_t* const seen = driver.comunication.load();
        driver.lock.unlock();
        setting.finish();
        QVERIFY(waited);
        QCOMPARE(seen, nullptr);
        QCOMPARE(driver.Comunication(), &endpoint);
    }

    void refusing_no_endpoint_holds_the_write_lock_and_gives_it_back() {
        probe_t driver;
        const asking_logger_t logger(&driver);
        QVERIFY(!driver.init_comunication(nullptr));
        QCOMPARE(logger.lines,
                 QStringList{QStringLiteral("Error to set comunication is nullptr!: writer")});
        QCOMPARE(driver.held(), QString());
    }

    void the_driver_is_told_without_the_lock() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        QVERIFY(driver.init_comunication(&endpoint));
        QCOMPARE(driver.held_when_told, QString());
    }

    void reading_the_endpoint_waits_for_a_writer() {
        fakes::scripted_endpoint_t former;
        fakes::scripted_endpoint_t next;
        probe_t driver;
        driver.init_comunication(&former);
        protoserver_t* read = nullptr;
        driver.lock.lockForWrite();
        kit::waiting_call_t reading([&] { read = driver.Comunication(); });
        const bool waited = reading.waits();
        driver.comunication.store(&next);
        driver.lock.unlock();
        reading.finish();
        QVERIFY(waited);
        QCOMPARE(read, &next);
    }

    void readers_do_not_wait_for_each_other() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        driver.init_comunication(&endpoint);
        driver.lock.lockForRead();
        kit::waiting_call_t reading([&] { driver.Comunication(); });
        const bool waited = reading.waits();
        driver.lock.unlock();
        QVERIFY(!waited);
    }

    void the_early_exit_of_a_call_needs_no_lock() {
        probe_t driver;
        const asking_logger_t logger(&driver);
        driver.lock.lockForWrite();
        kit::waiting_call_t call([&] { driver.Comunication([](protoserver_t*) {}); });
        const bool waited = call.waits();
        driver.lock.unlock();
        QVERIFY(!waited);
        QCOMPARE(logger.lines,
                 QStringList{QStringLiteral("Comunication is nullptr, operation skipped: writer")});
    }

    void a_call_that_finds_no_endpoint_any_more_says_so_under_the_read_lock() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        const asking_logger_t logger(&driver);
        endpoint.hold();
        driver.Comunication([](protoserver_t*) {});
        driver.comunication.store(nullptr);
        endpoint.release();
        endpoint.drain();
        QCOMPARE(
            logger.lines,
            QStringList{QStringLiteral("Comunication is nullptr, operation skipped: readers")});
    }
};

QTEST_GUILESS_MAIN(tst_IComunication_locks)
#include "tst_IComunication_locks.moc"
