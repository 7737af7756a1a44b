#include <QTest>
#include <algorithm>
#include <memory>
#include <optional>

#include "drivers/driver/capability/plugin_driver_IComunication.h"
#include "fakes/endpoint_thread_t.h"
#include "fakes/recording_logger_t.h"

using comunication::protoserver_t;

namespace {

const QString source =
    QStringLiteral("server/drivers/driver/capability/plugin_driver_IComunication");
const QString skipped = QStringLiteral("Comunication is nullptr, operation skipped");

class probe_t : public interfaces::IComunication {
 public:
    ~probe_t() override { end_calls(); }
    bool finalize_comunication_initialization() override {
        seen = Comunication();  // deadlocks if the lock is still held
        ++finalized;
        return result;
    }
    void init_comunication_event(bool) override {}

    using IComunication::Comunication;
    void forget_endpoint() {
        const QWriteLocker locker(&lock);
        comunication = nullptr;
    }
    /// A guarded call that switches API messages: the endpoint writes down its thread.
    void call() {
        Comunication([](protoserver_t* _endpoint) { _endpoint->set_enable_api_message(true); });
    }

    int finalized = 0;
    bool result = true;
    protoserver_t* seen = nullptr;
};

/// A driver that ends no call itself.
class careless_t : public interfaces::IComunication {
 public:
    bool finalize_comunication_initialization() override { return true; }
    void init_comunication_event(bool) override {}

    using IComunication::Comunication;
};

}  // namespace

class tst_IComunication : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { logger = std::make_unique<fakes::recording_logger_t>(); }
    void cleanup() { logger.reset(); }

    void the_endpoint_is_stored_before_the_driver_is_told() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        QCOMPARE(driver.Comunication(), nullptr);
        QVERIFY(driver.init_comunication(&endpoint));
        QCOMPARE(driver.finalized, 1);
        QCOMPARE(driver.seen, &endpoint);
        QCOMPARE(driver.Comunication(), &endpoint);
        QVERIFY(logger->lines().isEmpty());
    }

    void the_result_is_that_of_the_driver() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        driver.result = false;
        QVERIFY(!driver.init_comunication(&endpoint));
        QCOMPARE(driver.Comunication(), &endpoint);
    }

    void no_endpoint_is_logged_and_the_former_one_stays() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        QVERIFY(!driver.init_comunication(nullptr));
        QCOMPARE(driver.Comunication(), nullptr);
        QCOMPARE(driver.finalized, 0);
        QVERIFY(driver.init_comunication(&endpoint));
        QVERIFY(!driver.init_comunication(nullptr));
        QCOMPARE(driver.Comunication(), &endpoint);
        QCOMPARE(driver.finalized, 1);
        const fakes::recording_logger_t::line_t line{
            QStringLiteral("Error to set comunication is nullptr!"), 2,
            QStringLiteral("init_comunication"), source, 39};
        QCOMPARE(logger->lines(), (QList<fakes::recording_logger_t::line_t>{line, line}));
    }

    void a_call_without_an_endpoint_is_skipped_at_once() {
        probe_t driver;
        driver.call();
        QCOMPARE(logger->lines().size(), 1);
        QVERIFY(logger->contains(skipped, 3, QStringLiteral("Comunication"), source, 57));
    }

    void a_call_runs_on_the_endpoints_thread_only() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        endpoint.hold();
        driver.call();
        QVERIFY(endpoint->enabled().isEmpty());
        endpoint.release();
        endpoint.drain();
        QCOMPARE(endpoint->enabled_threads(), QList<QThread*>{endpoint.where()});
        QVERIFY(logger->lines().isEmpty());
    }

    void a_call_is_queued_on_the_endpoints_own_thread_too() {
        fakes::scripted_endpoint_t endpoint;
        probe_t driver;
        driver.init_comunication(&endpoint);
        driver.call();
        QVERIFY(endpoint.enabled().isEmpty());
        QCoreApplication::processEvents();
        QCOMPARE(endpoint.enabled(), QList<bool>{true});
    }

    void calls_run_in_the_order_they_were_made() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        QList<int> order;
        for (int i = 0; i < 50; ++i) {
            driver.Comunication([&order, i](protoserver_t*) { order.append(i); });
        }
        endpoint.drain();
        QCOMPARE(order.size(), 50);
        QVERIFY(std::is_sorted(order.cbegin(), order.cend()));
    }

    void an_endpoint_removed_meanwhile_skips_the_queued_call() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        endpoint.hold();
        driver.call();
        driver.forget_endpoint();
        endpoint.release();
        endpoint.drain();
        QVERIFY(endpoint->enabled().isEmpty());
        QCOMPARE(logger->lines().size(), 1);
        QVERIFY(logger->contains(skipped, 3, QStringLiteral("operator()"), source, 64));
    }

    void the_arguments_may_die_before_the_call_runs() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        endpoint.hold();
        {
            const QString topic = QStringLiteral("a/b").toUpper();
            driver.Comunication([topic](protoserver_t* _endpoint) {
                _endpoint->publish_delete(topic, comunication::utility::qos_t::exactly_once, true);
            });
        }
        endpoint.release();
        endpoint.drain();
        QCOMPARE(endpoint->deleted().constFirst().topic, QStringLiteral("A/B"));
    }

    void a_queued_call_goes_to_the_endpoint_of_the_moment_it_runs() {
        fakes::endpoint_thread_t first;
        fakes::scripted_endpoint_t second;
        probe_t driver;
        driver.init_comunication(first.get());
        first.hold();
        driver.call();
        driver.init_comunication(&second);
        first.release();
        first.drain();
        QVERIFY(first->enabled().isEmpty());
        QCOMPARE(second.enabled(), QList<bool>{true});
    }

    void a_queued_call_of_a_deleted_driver_does_nothing() {
        fakes::endpoint_thread_t endpoint;
        auto driver = std::make_unique<probe_t>();
        driver->init_comunication(endpoint.get());
        endpoint.hold();
        for (int i = 0; i < 20; ++i) {
            driver->call();
        }
        driver.reset();
        endpoint.release();
        endpoint.drain();
        QVERIFY(endpoint->enabled().isEmpty());
        QVERIFY(logger->lines().isEmpty());
    }

    void the_capability_ends_the_calls_of_a_driver_that_does_not() {
        fakes::scripted_endpoint_t endpoint;
        // Its memory stays, so that a call that was not ended is seen.
        std::optional<careless_t> driver(std::in_place);
        driver->init_comunication(&endpoint);
        bool called = false;
        driver->Comunication([&called](protoserver_t*) { called = true; });
        driver.reset();
        QCoreApplication::processEvents();
        QVERIFY(!called);
    }

    void deleting_a_driver_waits_for_its_running_call() {
        fakes::endpoint_thread_t endpoint;
        auto driver = std::make_unique<probe_t>();
        driver->init_comunication(endpoint.get());
        QSemaphore inside;
        std::atomic<bool> finished{false};
        driver->Comunication([&](protoserver_t* _endpoint) {
            inside.release();
            for (int i = 0; i < 1000; ++i) {
                QThread::yieldCurrentThread();
            }
            _endpoint->set_enable_api_message(false);
            finished = true;
        });
        inside.acquire();
        driver.reset();
        QVERIFY(finished);
    }

    void a_call_from_any_thread_is_taken() {
        fakes::endpoint_thread_t endpoint;
        probe_t driver;
        driver.init_comunication(endpoint.get());
        const std::unique_ptr<QThread> other(QThread::create([&driver] {
            for (int i = 0; i < 100; ++i) {
                driver.call();
            }
        }));
        other->start();
        for (int i = 0; i < 100; ++i) {
            driver.call();
        }
        QVERIFY(other->wait());
        endpoint.drain();
        QCOMPARE(endpoint->enabled().size(), 200);
    }

    void an_endpoint_that_is_deleted_takes_its_queued_calls_with_it() {
        auto endpoint = std::make_unique<fakes::scripted_endpoint_t>();
        probe_t driver;
        driver.init_comunication(endpoint.get());
        bool called = false;
        driver.Comunication([&called](protoserver_t*) { called = true; });
        endpoint.reset();
        QCoreApplication::processEvents();
        QVERIFY(!called);
    }

 private:
    std::unique_ptr<fakes::recording_logger_t> logger;
};

QTEST_GUILESS_MAIN(tst_IComunication)
#include "tst_IComunication.moc"
