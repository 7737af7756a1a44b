// plugin_driver_api_t: on which thread and when its relays run.
#include <QTest>
#include <functional>
#include <memory>
#include <utility>

#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"
#include "fakes/endpoint_thread_t.h"
#include "fakes/recording_logger_t.h"
#include "kit/furnish.h"
#include "kit/queued_calls_t.h"

using interfaces::mqtt_server_t;
using interfaces::plugin_driver_api_t;

namespace {

/// A logger that has something done while the driver says that it goes.
class last_word_t : public fakes::recording_logger_t {
 public:
    explicit last_word_t(std::function<void()> _then) : then(std::move(_then)) {}

    void log_asynch(const QString& _message, int, const QString&, const QString&, int) override {
        if (_message == QStringLiteral("Destructor plugin_driver_api")) {
            std::exchange(then, [] {})();
            ++words;
        }
    }

    int words = 0;

 private:
    std::function<void()> then;
};

}  // namespace

class tst_plugin_driver_api_relays : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        logger = std::make_unique<fakes::recording_logger_t>();
        home = std::make_unique<fakes::memory_database_t>();
        kit::furnish(*home);
        endpoint = std::make_unique<fakes::endpoint_thread_t>();
        driver = std::make_unique<plugin_driver_api_t>();
        QVERIFY(driver->init_database(home->get()));
        QVERIFY(driver->init_comunication(endpoint->get()));
        driver->start(false);
        endpoint->settle();
        (*endpoint)->forget();
        logger->clear();
    }
    void cleanup() {
        driver.reset();
        endpoint.reset();
        home.reset();
        logger.reset();
    }

    void what_the_server_asks_for_waits_in_the_plugins_queue_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("publication") << 0;
        QTest::newRow("deletion") << 1;
        QTest::newRow("subscription") << 2;
    }
    void what_the_server_asks_for_waits_in_the_plugins_queue() {
        QFETCH(int, signal);
        const kit::queued_calls_t calls(driver.get());
        ask(signal);
        endpoint->drain();
        QCOMPARE(asked(), 0);
        QCOMPARE(calls.count, 0);
        endpoint->settle();
        QCOMPARE(asked(), 1);
        QCOMPARE(calls.count, 1);
    }

    void what_the_server_asks_for_keeps_its_order() {
        ask(2);
        ask(1);
        ask(0);
        endpoint->settle();
        const QList<QJsonObject> history = (*endpoint)->history();
        QCOMPARE(history.size(), 3);
        QVERIFY(history[0].contains(QStringLiteral("subscribe")));
        QVERIFY(history[1].contains(QStringLiteral("delete")));
        QVERIFY(history[2].contains(QStringLiteral("publish")));
    }

    void a_message_of_the_endpoint_waits_in_the_plugins_queue() {
        driver->start(true);
        endpoint->settle();
        logger->clear();
        const kit::queued_calls_t calls(driver.get());
        QMetaObject::invokeMethod(
            endpoint->get(),
            [this] {
                (*endpoint)->deliver(QStringLiteral("v9"), {}, {}, QStringLiteral("request"),
                                     QStringLiteral("t"), {}, false);
            },
            Qt::BlockingQueuedConnection);
        QVERIFY(logger->lines().isEmpty());
        QCOMPARE(calls.count, 0);
        endpoint->settle();
        QCOMPARE(logger->count(QStringLiteral("not found api version v9")), 1);
        QCOMPARE(calls.count, 1);
    }

    void calls_end_before_the_driver_begins_to_go() {
        logger.reset();
        const last_word_t words([this] {
            endpoint->release();
            endpoint->drain();
        });
        const QList<bool> before = (*endpoint)->enabled();
        endpoint->hold();
        driver->start(true);
        driver.reset();
        QCOMPARE(words.words, 1);
        QCOMPARE((*endpoint)->enabled(), before);
    }

 private:
    void ask(int _signal) {
        auto* const server = driver->findChild<mqtt_server_t*>();
        if (_signal == 0) {
            Q_EMIT server->publish_message(QStringLiteral("t"), {}, false);
        } else if (_signal == 1) {
            Q_EMIT server->publish_delete_message(QStringLiteral("t"), true);
        } else {
            Q_EMIT server->subscription_status_api(true);
        }
    }
    qsizetype asked() const { return (*endpoint)->history().size(); }

    std::unique_ptr<fakes::recording_logger_t> logger;
    std::unique_ptr<fakes::memory_database_t> home;
    std::unique_ptr<fakes::endpoint_thread_t> endpoint;
    std::unique_ptr<plugin_driver_api_t> driver;
};

QTEST_GUILESS_MAIN(tst_plugin_driver_api_relays)
#include "tst_plugin_driver_api_relays.moc"
