// The plugin starts on two threads: routes come in on the endpoint's while the elements load on
// its own. Whoever is quicker, no packet may be lost and no request stay without an answer.
#include <QElapsedTimer>
#include <QTest>
#include <atomic>

#include "contract/support/loaded_plugin_t.h"
#include "kit/furnish.h"

class tst_start_race : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(plugin.is_loaded(), qPrintable(plugin.error()));
        kit::furnish(home);
    }

    void a_thousand_starts_lose_no_packet() {
        const QString topic = QStringLiteral("local/api/v1/%1/status/elements/objects_list/%2");
        const QString alice = QStringLiteral("alice");
        const QStringList expected{topic.arg(alice, QStringLiteral("e-lamp")),
                                   topic.arg(alice, QStringLiteral("e-night")),
                                   topic.arg(alice, QStringLiteral("e-therm")),
                                   topic.arg(QStringLiteral("bob"), QStringLiteral("e-lamp"))};
        QElapsedTimer clock;
        clock.start();
        int complete = 0;
        for (int start = 0; start < starts; ++start) {
            fakes::endpoint_thread_t endpoint;
            const auto driver = plugin.driver(home.get(), endpoint.get());
            QVERIFY(driver != nullptr);
            driver->start(true);
            run_until_started(endpoint);
            endpoint.settle();
            complete += endpoint->retained().keys() == expected ? 1 : 0;
        }
        QCOMPARE(complete, starts);
        QVERIFY2(clock.elapsed() < STARTS_LIMIT_MS, qPrintable(QString::number(clock.elapsed())));
    }

    void requests_queued_before_a_stop_are_all_answered() {
        const QString topic =
            QStringLiteral("local/api/v1/alice/x/request/get/elements/objects_list/e-lamp");
        for (int round = 0; round < 100; ++round) {
            fakes::endpoint_thread_t endpoint;
            const auto driver = plugin.driver(home.get(), endpoint.get());
            driver->start(true);
            endpoint.settle();
            endpoint->forget();
            for (int request = 0; request < requests; ++request) {
                endpoint->deliver(QStringLiteral("v1"), QStringLiteral("alice"), {},
                                  QStringLiteral("request"), topic, {}, false);
            }
            driver->start(false);
            run_until_started(endpoint);
            endpoint.settle();
            QCOMPARE(answers(endpoint), requests);
            QCOMPARE(endpoint->enabled(), (QList<bool>{true, false}));
        }
    }

    void deleting_a_driver_that_is_starting_is_safe() {
        for (int round = 0; round < 300; ++round) {
            fakes::endpoint_thread_t endpoint;
            auto driver = plugin.driver(home.get(), endpoint.get());
            driver->start(true);
            if (round % 3 == 1) {
                QCoreApplication::processEvents();
            } else if (round % 3 == 2) {
                driver->start(false);
            }
            driver.reset();
            endpoint.settle();
            QVERIFY(endpoint->published().isEmpty() || round % 3 == 1);
        }
    }

 private:
    static constexpr int starts = 1000;
    static constexpr int requests = 50;

    /// Handles this thread's events as fast as it can while the endpoint's thread starts the
    /// driver: the worst moment for both.
    static void run_until_started(fakes::endpoint_thread_t& _endpoint) {
        std::atomic<bool> started{false};
        QMetaObject::invokeMethod(
            _endpoint.get(), [&started] { started = true; }, Qt::QueuedConnection);
        while (!started) {
            QCoreApplication::processEvents();
        }
    }

    /// Answers of either kind: the element, or that the API is off by now.
    static int answers(const fakes::endpoint_thread_t& _endpoint) {
        int count = 0;
        for (const auto& message : _endpoint->published()) {
            const QJsonObject body = message.payload.toObject();
            const int error = body.value(QStringLiteral("error")).toInt();
            count += body.contains(QStringLiteral("data")) || error == 406 || error == 404 ? 1 : 0;
        }
        return count;
    }

    support::loaded_plugin_t plugin;
    fakes::memory_database_t home;
};

QTEST_GUILESS_MAIN(tst_start_race)
#include "tst_start_race.moc"
