#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"

#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "fakes/endpoint_thread_t.h"
#include "fakes/recording_logger_t.h"
#include "kit/furnish.h"

using interfaces::data_api_elements_t;
using interfaces::mqtt_server_api_v1_t;
using interfaces::mqtt_server_t;
using interfaces::plugin_driver_api_t;

namespace {
const QString source = QStringLiteral("server/drivers/plugins/plugin_driver_api/restful_api_t");
}

class tst_plugin_driver_api_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        logger = std::make_unique<fakes::recording_logger_t>();
        home = std::make_unique<fakes::memory_database_t>();
        kit::furnish(*home);
        endpoint = std::make_unique<fakes::endpoint_thread_t>();
        driver = std::make_unique<plugin_driver_api_t>();
    }
    void cleanup() {
        driver.reset();
        endpoint.reset();
        home.reset();
        logger.reset();
    }

    void it_names_itself_and_creates_nothing_else() {
        QVERIFY(logger->contains(QStringLiteral("Constructor plugin plugin_driver_api v. 0.1"), 4,
                                 QStringLiteral("plugin_driver_interface_t"),
                                 QStringLiteral("server/drivers/driver/plugin_driver_interface_t"),
                                 36));
        QCOMPARE(driver->parent(), nullptr);
        QVERIFY(driver->children().isEmpty());
    }

    void the_id_is_the_topic_and_the_name() {
        QVERIFY(driver->init_database(home->get()));
        QVERIFY(logger->contains(QStringLiteral("Driver id: installation/0001/plugin_driver_api"),
                                 6, QStringLiteral("finalize_database_initialization"), source,
                                 28));
    }

    void the_database_gives_a_disabled_collection_and_a_server() {
        QVERIFY(driver->init_database(home->get()));
        QCOMPARE(collections().size(), 1);
        QCOMPARE(servers().size(), 1);
        QVERIFY(!collections().first()->getEnabled());
        QVERIFY(collections().first()->get_data_api_elements().isEmpty());
    }

    void a_second_database_call_keeps_both_and_does_not_disable() {
        QVERIFY(driver->init_database(home->get()));
        const auto first_collections = collections();
        const auto first_servers = servers();
        first_collections.first()->setEnabled(true);
        QVERIFY(driver->init_database(home->get()));
        QCOMPARE(collections(), first_collections);
        QCOMPARE(servers(), first_servers);
        QVERIFY(first_collections.first()->getEnabled());
        QCOMPARE(first_collections.first()->get_data_api_elements().size(), 3);
    }

    void what_was_deleted_meanwhile_is_created_again() {
        QVERIFY(driver->init_database(home->get()));
        delete servers().first();
        QVERIFY(servers().isEmpty());
        QVERIFY(driver->init_database(home->get()));
        QCOMPARE(servers().size(), 1);
        delete collections().first();
        const auto server = servers();
        QVERIFY(driver->init_database(home->get()));
        QCOMPARE(collections().size(), 1);
        QVERIFY(!collections().first()->getEnabled());
        QCOMPARE(servers(), server);
    }

    void start_without_a_database_switches_messages_off_data() {
        QTest::addColumn<bool>("init");
        QTest::newRow("start") << true;
        QTest::newRow("stop") << false;
    }
    void start_without_a_database_switches_messages_off() {
        QFETCH(bool, init);
        QVERIFY(driver->init_comunication(endpoint->get()));
        driver->start(init);
        endpoint->settle();
        QCOMPARE((*endpoint)->enabled(), QList<bool>{false});
    }

    void start_without_an_endpoint_warns_and_installs_no_route() {
        QVERIFY(driver->init_database(home->get()));
        driver->start(true);
        QCoreApplication::processEvents();
        QVERIFY(logger->contains(
            QStringLiteral("Comunication is nullptr, operation skipped"), 3,
            QStringLiteral("Comunication"),
            QStringLiteral("server/drivers/driver/capability/plugin_driver_IComunication"), 57));
        QVERIFY(!handler()->getEnable());
    }

    void start_switches_messages_on_and_then_installs_the_routes() {
        prepare();
        QList<bool> switched_before;
        QThread* where = nullptr;
        connect(
            handler(), &mqtt_server_api_v1_t::enable_change, handler(),
            [&] {
                switched_before = (*endpoint)->enabled();
                where = QThread::currentThread();
            },
            Qt::DirectConnection);
        driver->start(true);
        endpoint->settle();
        QCOMPARE(where, endpoint->where());
        QCOMPARE(switched_before, QList<bool>{true});
        QCOMPARE((*endpoint)->enabled_threads(), QList<QThread*>{endpoint->where()});
        QVERIFY(handler()->getEnable());
        driver->start(false);
        endpoint->settle();
        QCOMPARE((*endpoint)->enabled(), (QList<bool>{true, false}));
        QVERIFY(!handler()->getEnable());
    }

    void starting_twice_leaves_each_connection_single() {
        prepare();
        driver->start(true);
        driver->start(true);
        driver->start(false);
        endpoint->settle();
        (*endpoint)->forget();
        emit_all_three();
        endpoint->settle();
        QCOMPARE((*endpoint)->published().size(), 1);
        QCOMPARE((*endpoint)->deleted().size(), 1);
        QCOMPARE((*endpoint)->subscriptions().size(), 1);
    }

    void a_stop_makes_the_connections_too() {
        prepare();
        driver->start(false);
        endpoint->settle();
        (*endpoint)->forget();
        emit_all_three();
        endpoint->settle();
        QCOMPARE((*endpoint)->published().size(), 1);
        QCOMPARE((*endpoint)->deleted().size(), 1);
        QCOMPARE((*endpoint)->subscriptions().size(), 1);
    }

    void publications_reach_the_endpoint_with_quality_2_data() {
        QTest::addColumn<bool>("retain");
        QTest::newRow("retained") << true;
        QTest::newRow("live") << false;
    }
    void publications_reach_the_endpoint_with_quality_2() {
        QFETCH(bool, retain);
        prepare();
        driver->start(false);
        endpoint->settle();
        (*endpoint)->forget();
        const QJsonObject body{{QStringLiteral("data"), 1}};
        Q_EMIT servers().first()->publish_message(QStringLiteral("a/b"), body, retain);
        Q_EMIT servers().first()->publish_delete_message(QStringLiteral("a/c"), retain);
        Q_EMIT servers().first()->subscription_status_api(retain);
        endpoint->settle();
        const auto published = (*endpoint)->published().constFirst();
        QCOMPARE(published.topic, QStringLiteral("a/b"));
        QVERIFY(published.payload.isObject());
        QCOMPARE(published.payload.toObject(), body);
        QCOMPARE(static_cast<int>(published.qos), 2);
        QCOMPARE(published.retain, retain);
        QVERIFY(!published.reserved);
        QCOMPARE(published.thread, endpoint->where());
        const auto deleted = (*endpoint)->deleted().constFirst();
        QCOMPARE(deleted.topic, QStringLiteral("a/c"));
        QCOMPARE(static_cast<int>(deleted.qos), 2);
        QCOMPARE(deleted.retain, retain);
        QCOMPARE(deleted.thread, endpoint->where());
        QCOMPARE(static_cast<int>((*endpoint)->subscriptions().constFirst()), retain ? 1 : 0);
        QCOMPARE((*endpoint)->subscription_threads().constFirst(), endpoint->where());
    }

    void messages_are_relayed_once_and_not_after_the_event_is_undone() {
        prepare();
        driver->init_comunication_event(true);
        driver->start(true);
        endpoint->settle();
        deliver_unknown_version();
        QCOMPARE(logger->count(QStringLiteral("not found api version v9")), 1);
        driver->init_comunication_event(false);
        deliver_unknown_version();
        QCOMPARE(logger->count(QStringLiteral("not found api version v9")), 1);
    }

    void a_message_is_queued_not_handled_in_the_emitting_call() {
        prepare();
        driver->start(true);
        endpoint->settle();
        (*endpoint)->deliver(QStringLiteral("v9"), {}, {}, {}, {}, {}, false);
        QCOMPARE(logger->count(QStringLiteral("not found api version v9")), 0);
        endpoint->settle();
        QCOMPARE(logger->count(QStringLiteral("not found api version v9")), 1);
    }

    void a_message_without_a_server_is_dropped_with_a_line() {
        prepare();
        driver->start(true);
        endpoint->settle();
        delete servers().first();
        deliver_unknown_version();
        QVERIFY(logger->contains(QStringLiteral("API mqtt server is nullptr ... "), 2,
                                 QStringLiteral("onComunicationAPIMessageIncoming"), source, 107));
        QCOMPARE(logger->count(QStringLiteral("not found api version")), 0);
    }

    void the_dispatcher_event_does_nothing() {
        QObject other;
        driver->init_event_to_dispatcher(true, &other);
        driver->init_event_to_dispatcher(false, nullptr);
        QCOMPARE(logger->lines().size(), 1);  // the constructor's
    }

    void connecting_without_an_endpoint_only_warns() {
        QTest::ignoreMessage(QtWarningMsg,
                             "QObject::connect(comunication::protoserver_t, "
                             "interfaces::plugin_driver_api_t): invalid nullptr parameter");
        driver->init_comunication_event(true);
    }

    void deletion_takes_its_children_and_nothing_of_the_hosts() {
        prepare();
        driver->start(true);
        endpoint->settle();
        const QPointer<data_api_elements_t> collection = collections().first();
        const QPointer<mqtt_server_t> server = servers().first();
        const QPointer<database::database_t> database = home->get();
        logger->clear();
        driver.reset();
        QVERIFY(collection.isNull() && server.isNull());
        QVERIFY(!database.isNull());
        QCOMPARE(logger->lines().constFirst(),
                 (fakes::recording_logger_t::line_t{QStringLiteral("Destructor plugin_driver_api"),
                                                    4, QStringLiteral("~plugin_driver_api_t"),
                                                    source, 17}));
        QCOMPARE((*endpoint)->enabled(), QList<bool>{true});
        endpoint->drain();
    }

    void deletion_with_queued_calls_makes_them_do_nothing() {
        prepare();
        endpoint->hold();
        driver->start(true);
        driver.reset();
        endpoint->release();
        endpoint->settle();
        QVERIFY((*endpoint)->enabled().isEmpty());
    }

 private:
    void prepare() {
        QVERIFY(driver->init_database(home->get()));
        QVERIFY(driver->init_comunication(endpoint->get()));
    }
    QList<data_api_elements_t*> collections() const {
        return driver->findChildren<data_api_elements_t*>(Qt::FindDirectChildrenOnly);
    }
    QList<mqtt_server_t*> servers() const {
        return driver->findChildren<mqtt_server_t*>(Qt::FindDirectChildrenOnly);
    }
    mqtt_server_api_v1_t* handler() const { return driver->findChild<mqtt_server_api_v1_t*>(); }
    void emit_all_three() {
        Q_EMIT servers().first()->publish_message(QStringLiteral("a"), {}, false);
        Q_EMIT servers().first()->publish_delete_message(QStringLiteral("a"), true);
        Q_EMIT servers().first()->subscription_status_api(false);
    }
    void deliver_unknown_version() {
        (*endpoint)->deliver(QStringLiteral("v9"), {}, {}, QStringLiteral("request"),
                             QStringLiteral("t"), {}, false);
        endpoint->settle();
    }

    std::unique_ptr<fakes::recording_logger_t> logger;
    std::unique_ptr<fakes::memory_database_t> home;
    std::unique_ptr<fakes::endpoint_thread_t> endpoint;
    std::unique_ptr<plugin_driver_api_t> driver;
};

QTEST_GUILESS_MAIN(tst_plugin_driver_api_t)
#include "tst_plugin_driver_api_t.moc"
