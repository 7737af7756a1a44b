#include "drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "fakes/recording_logger_t.h"
#include "kit/queued_calls_t.h"
#include "kit/settle.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"

using interfaces::mqtt_server_api_v1_t;
using interfaces::mqtt_server_t;

namespace {

const QString source =
    QStringLiteral("server/drivers/plugins/plugin_driver_api/mqtt/mqtt_server_t");

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

}  // namespace

class tst_mqtt_server_t : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        logger = std::make_unique<fakes::recording_logger_t>();
        furnish(false);
        server = std::make_unique<mqtt_server_t>(elements.get(), nullptr);
    }
    void cleanup() {
        server.reset();
        clear();
        logger.reset();
    }

    void it_is_created_with_a_disabled_version_1_and_an_idle_debounce() {
        QVERIFY(!handler()->getEnable());
        QCOMPARE(handler()->parent(), server.get());
        QCOMPARE(server->findChildren<QTimer*>().size(), 1);
        QCOMPARE(timer()->interval(), 10000);
        QVERIFY(timer()->isSingleShot());
        QVERIFY(!timer()->isActive());
    }

    void a_malformed_message_is_only_logged_data() {
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("type");
        QTest::newRow("unknown version, request") << latin("v2") << latin("request");
        QTest::newRow("unknown version, status") << latin("v2") << latin("status");
        QTest::newRow("no version") << QString() << latin("request");
        QTest::newRow("unknown type") << latin("v1") << latin("command");
        QTest::newRow("other case") << latin("v1") << latin("Request");
        QTest::newRow("no type") << latin("v1") << QString();
        QTest::newRow("upper version") << latin("V1") << latin("request");
    }
    void a_malformed_message_is_only_logged() {
        QFETCH(QString, version);
        QFETCH(QString, type);
        start();
        logger->clear();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        server->handlerMessage(version, latin("alice"), {}, type, stale_topic(), {}, true);
        kit::settle();
        QVERIFY(published.isEmpty() && deleted.isEmpty());
        QCOMPARE(logger->lines().size(), 1);
        const auto line = logger->lines().constFirst();
        QCOMPARE(line.message, latin("API topic malformed... not found api version ") + version);
        QCOMPARE(line.level, 2);
        QCOMPARE(line.function, latin("handlerMessage"));
        QCOMPARE(line.source, source);
    }

    void a_request_is_answered_through_the_queue() {
        start();
        logger->clear();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        for (const bool retain : {false, true}) {
            server->handlerMessage(latin("v1"), latin("alice"), latin("client"), latin("request"),
                                   latin("local/api/v1/alice/x/request/nothing"), {}, retain);
        }
        QVERIFY(published.isEmpty());
        kit::settle();
        QCOMPARE(published.size(), 2);
        QCOMPARE(published[0][0].toString(), latin("local/api/v1/alice/x/status/nothing"));
        QCOMPARE(published[0][1].toJsonObject().value(latin("error")).toInt(), 405);
        QCOMPARE(published[0][2].toBool(), false);
        QVERIFY(logger->lines().isEmpty());
    }

    void a_status_message_that_is_not_retained_is_ignored_without_a_line() {
        start();
        logger->clear();
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        status(stale_topic(), false);
        QVERIFY(deleted.isEmpty() && logger->lines().isEmpty());
    }

    void a_retained_status_message_that_is_no_longer_valid_is_deleted() {
        start();
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        status(stale_topic(), true);
        QCOMPARE(deleted.size(), 1);
        QCOMPARE(deleted[0], (QList<QVariant>{stale_topic(), true}));
        status(latin("local/api/v1/alice/status/elements/objects_list/e-lamp"), true);
        status(latin("local/api/v1/alice/x/status/other"), true);
        QCOMPARE(deleted.size(), 1);
    }

    void updates_without_an_enabled_version_are_logged_once_each() {
        logger->clear();
        server->onUpdateElement(latin("e-lamp"), {});
        server->onUpdateElements({latin("e-lamp"), latin("e-night")});
        QCOMPARE(logger->lines().size(), 2);
        for (const auto& line : logger->lines()) {
            QCOMPARE(line.message, latin("All API is disable"));
            QCOMPARE(line.level, 3);
            QCOMPARE(line.source, source);
        }
        QCOMPARE(logger->lines()[0].function, latin("onUpdateElement"));
        QCOMPARE(logger->lines()[1].function, latin("onUpdateElements"));
    }

    void updates_reach_the_enabled_version() {
        start();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        logger->clear();
        server->onUpdateElement(latin("e-night"), {});
        server->onUpdateElements({latin("e-night"), latin("e-therm")});
        kit::settle();
        QCOMPARE(published.size(), 3);
        QVERIFY(published[0][2].toBool());
        QVERIFY(logger->lines().isEmpty());
    }

    void a_value_change_of_the_collection_is_published() {
        start();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        Q_EMIT elements->value_change(latin("e-lamp"), {latin("dim")});
        QVERIFY(published.isEmpty());
        kit::settle();
        QCOMPARE(published.size(), 2);
        QCOMPARE(
            published[0][1].toJsonObject()[latin("data")][latin("functions")].toObject().keys(),
            QStringList{latin("dim")});
    }

    void a_reset_of_the_collection_is_ignored() {
        start();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        QSignalSpy deleted(server.get(), &mqtt_server_t::publish_delete_message);
        QSignalSpy subscribed(server.get(), &mqtt_server_t::subscription_status_api);
        logger->clear();
        Q_EMIT elements->on_reset_api_elements(true, {latin("e-lamp")});
        kit::settle();
        QVERIFY(published.isEmpty() && deleted.isEmpty() && subscribed.isEmpty());
        QVERIFY(logger->lines().isEmpty());
    }

    void a_reset_is_heard_at_once_and_everything_else_through_the_queue() {
        start();
        const kit::queued_calls_t calls(server.get());
        Q_EMIT elements->on_reset_api_elements(true, {});
        kit::settle();
        QCOMPARE(calls.count, 0);
        Q_EMIT elements->value_change(latin("gone"), {});
        Q_EMIT elements->add_acl_element(latin("a"), latin("gone"), latin("none"));
        Q_EMIT elements->remove_acl_element(latin("a"), latin("gone"));
        kit::settle();
        QCOMPARE(calls.count, 3);
    }

    void starting_again_does_not_double_anything() {
        start();
        start();
        server->init_event(true);
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        Q_EMIT elements->value_change(latin("e-night"), {});
        kit::settle();
        QCOMPARE(published.size(), 1);
    }

    void enabling_events_twice_and_disabling_once_leaves_no_connection() {
        handler()->setEnable(true);
        server->init_event(true);
        server->init_event(true);
        server->init_event(false);
        kit::settle();
        QSignalSpy published(handler(), &mqtt_server_api_v1_t::publish_message);
        timer()->stop();
        Q_EMIT elements->value_change(latin("e-night"), {});
        Q_EMIT elements->acl_changes();
        kit::settle();
        QVERIFY(published.isEmpty());
        QVERIFY(!timer()->isActive());
    }

    void a_stop_connects_the_publications_and_never_undoes_them() {
        server->init_route_path(false);
        kit::settle();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        Q_EMIT handler()->publish_message(latin("t"), {{latin("a"), 1}}, true);
        QVERIFY(published.isEmpty());
        kit::settle();
        QCOMPARE(published.size(), 1);
        QCOMPARE(published[0], (QList<QVariant>{latin("t"), QJsonObject{{latin("a"), 1}}, true}));
    }

    void without_a_collection_it_starts_and_answers() {
        elements.reset();
        start();
        QSignalSpy published(server.get(), &mqtt_server_t::publish_message);
        server->handlerMessage(latin("v1"), latin("alice"), {}, latin("request"),
                               latin("local/api/v1/alice/x/request/get/elements/objects_list"), {},
                               false);
        kit::settle();
        QCOMPARE(published[0][1].toJsonObject(), (QJsonObject{{latin("data"), QJsonObject()}}));
        server->init_event_modify_acl(false);
        server->init_route_path(false);
        kit::settle();
    }

    void destruction_takes_handler_and_timer() {
        const QPointer<mqtt_server_api_v1_t> version_1 = handler();
        const QPointer<QTimer> debounce = timer();
        start();
        server.reset();
        QVERIFY(version_1.isNull() && debounce.isNull());
        QCOMPARE(logger->count(latin("Destructor v1")), 1);
        Q_EMIT elements->acl_changes();
        kit::settle();
    }

 private:
    mqtt_server_api_v1_t* handler() const { return server->findChild<mqtt_server_api_v1_t*>(); }
    QTimer* timer() const { return server->findChild<QTimer*>(); }
    static QString stale_topic() {
        return latin("local/api/v1/bob/status/elements/objects_list/e-night");
    }
    void start() {
        server->init_route_path(true);
        kit::settle();
    }
    void status(const QString& _topic, bool _retain) {
        server->handlerMessage(latin("v1"), _topic.section(QLatin1Char('/'), 3, 3), {},
                               latin("status"), _topic, {}, _retain);
        kit::settle();
    }

    std::unique_ptr<fakes::recording_logger_t> logger;
    std::unique_ptr<mqtt_server_t> server;
};

QTEST_GUILESS_MAIN(tst_mqtt_server_t)
#include "tst_mqtt_server_t.moc"
