#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include "endpoint/mqtt_endpoint_t.h"
#include "fakes/recording_logger_t.h"
#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"
#include "kit/wait_until.h"

using comunication::mqtt_endpoint_t;
using comunication::utility::qos_t;
using comunication::utility::subscribe_t;
using namespace kit;

namespace {
const QByteArray refusal = R"({"error":400,"message":"Non-compliant payload"})";
const QString request = QStringLiteral("local/api/v1/alice/phone/request/get/x");
const QString answer = QStringLiteral("local/api/v1/alice/phone/status/get/x");
}  // namespace

/// Each test: one endpoint on a real broker, and the user alice.
class tst_mqtt_endpoint_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void request_and_answer_make_a_round_trip();
    void what_became_of_a_request_is_told();
    void each_request_is_passed_with_whether_it_is_small();
    void messages_are_emitted_only_while_enabled();
    void own_status_is_not_echoed();
    void subscribing_again_brings_retained_status_again();
    void states_of_one_user_are_brought_and_nothing_follows();
    void unsubscribed_status_stays_away();
    void status_without_an_object_is_an_empty_object();
    void deleted_status_is_not_emitted();
    void stored_retained_request_is_cleared_and_not_emitted();
    void live_retained_request_is_cleared_and_not_emitted();
    void request_without_an_object_is_answered_400_data();
    void request_without_an_object_is_answered_400();
    void request_without_payload_is_an_empty_object();
    void malformed_request_is_not_answered_while_disabled();
    void request_of_a_client_named_status_is_emitted_once();
    void burst_of_20000_retained_is_complete();
    void publish_without_a_value_deletes_nothing();
    void impossible_topic_is_refused_and_counted();
    void full_queue_drops_and_counts();
    void a_mark_comes_back_behind_what_was_published();
    void a_mark_comes_back_without_a_connection();
    void connection_topic_tells_the_state();

 private:
    void connect_endpoint(const comunication::endpoint_settings_t& _settings);
    void publish(const QString& _topic, const QJsonObject& _payload, bool _retain = false) {
        endpoint->publish(_topic, _payload, qos_t::exactly_once, _retain, false);
    }

    std::unique_ptr<real_broker_t> broker;
    std::unique_ptr<mqtt_endpoint_t> endpoint;
    std::unique_ptr<mqtt_client_t> alice;
    std::unique_ptr<QSignalSpy> messages;
};

void tst_mqtt_endpoint_t::init() {
    broker = std::make_unique<real_broker_t>();
    QCOMPARE(broker->start(), QString());
    connect_endpoint(broker->endpoint_settings());
    alice = std::make_unique<mqtt_client_t>();
    QCOMPARE(alice->sign_in(broker->settings.port, "alice", "alice-password"), 0);
    QVERIFY(alice->subscribe("local/api/v1/alice/#"));
}

void tst_mqtt_endpoint_t::connect_endpoint(const comunication::endpoint_settings_t& _settings) {
    endpoint = std::make_unique<mqtt_endpoint_t>(_settings);
    messages = std::make_unique<QSignalSpy>(endpoint.get(), &mqtt_endpoint_t::api_message);
    QSignalSpy connected(endpoint.get(), &mqtt_endpoint_t::connected);
    endpoint->start();
    QVERIFY(connected.wait());
    QCOMPARE(connected.first().first().toBool(), false);
    endpoint->set_enable_api_message(true);
}

void tst_mqtt_endpoint_t::cleanup() {
    alice.reset();
    messages.reset();
    endpoint.reset();
    broker.reset();
}

void tst_mqtt_endpoint_t::request_and_answer_make_a_round_trip() {
    connect(endpoint.get(), &mqtt_endpoint_t::api_message, this,
            [this](const QString&, const QString&, const QString&, const QString&, const QString&,
                   const QJsonObject& _payload) { publish(answer, _payload); });
    QCOMPARE(alice->publish(request, "{\"a\":1}"), 0);
    QCOMPARE(alice->heard(answer), QByteArray("{\"a\":1}"));
    QCOMPARE(messages->size(), 1);
    QCOMPARE(messages->first(), (QVariantList{"v1", "alice", "phone", "request", request,
                                              QJsonObject{{"a", 1}}, false}));
    QCOMPARE(endpoint->counters().received.load(), quint64(1));
}

void tst_mqtt_endpoint_t::what_became_of_a_request_is_told() {
    QList<comunication::exchange_t> told;
    connect(endpoint.get(), &mqtt_endpoint_t::exchanged, this,
            [&told](const comunication::exchange_t& _exchange) { told.append(_exchange); });
    const auto driver =
        connect(endpoint.get(), &mqtt_endpoint_t::api_message, this,
                [this](const QString&, const QString&, const QString&, const QString&,
                       const QString&, const QJsonObject& _payload) {
                    publish("local/api/v1/alice/status/e-1", {}, true);  // a state, no answer
                    publish(answer, _payload);
                });
    QCOMPARE(alice->publish(request, R"({"uuid":"1"})"), 0);
    QTRY_COMPARE(told.size(), 1);
    QVERIFY(told[0].is_answered);
    QCOMPARE(told[0].topic, request);
    QCOMPARE(told[0].levels.user, QString("alice"));
    QCOMPARE(told[0].answer["uuid"], QJsonValue("1"));
    disconnect(driver);
    QCOMPARE(alice->publish(request, R"({"uuid":"2"})"), 0);
    QTRY_COMPARE(told.size(), 2);
    QVERIFY(!told[1].is_answered);
    QCOMPARE(told[1].request["uuid"], QJsonValue("2"));
    QCOMPARE(alice->publish(request, "[]"), 0);
    QTRY_COMPARE(told.size(), 3);
    QCOMPARE(told[2].answer["error"], QJsonValue(400));
    QCOMPARE(told[2].bytes, qint64(0));
}

void tst_mqtt_endpoint_t::each_request_is_passed_with_whether_it_is_small() {
    const QSignalSpy passed(endpoint.get(), &mqtt_endpoint_t::request_passed);
    connect(endpoint.get(), &mqtt_endpoint_t::request_passed, endpoint.get(),
            &mqtt_endpoint_t::request_done, Qt::QueuedConnection);
    const QString list = "local/api/v1/alice/phone/request/get/elements/objects_list";
    QCOMPARE(alice->publish(list + "/e-1", "{}"), 0);
    QCOMPARE(alice->publish(list, "{}"), 0);
    QTRY_COMPARE(passed.size(), 2);
    QCOMPARE(passed[0][0].toBool(), true);
    QCOMPARE(passed[1][0].toBool(), false);
}

void tst_mqtt_endpoint_t::messages_are_emitted_only_while_enabled() {
    endpoint->set_enable_api_message(false);
    QCOMPARE(alice->publish(request, "{\"a\":1}"), 0);
    QTRY_COMPARE(endpoint->counters().received.load(), quint64(1));
    endpoint->set_enable_api_message(true);
    QCOMPARE(alice->publish(request, "{\"a\":2}"), 0);
    QTRY_COMPARE(messages->size(), 1);
    QCOMPARE(messages->first()[5].toJsonObject(), (QJsonObject{{"a", 2}}));
}

void tst_mqtt_endpoint_t::own_status_is_not_echoed() {
    endpoint->subscription_status_api(subscribe_t::subscribe);
    publish("local/api/v1/alice/status/e-1", {{"a", 1}}, true);
    publish("local/api/v1/alice/phone/request/own", {{"a", 1}});
    alice->heard("local/api/v1/alice/phone/request/own");
    QCOMPARE(alice->publish(request, "{}"), 0);  // a fence behind what would have been echoed
    QTRY_COMPARE(messages->size(), 1);
    QCOMPARE(messages->first()[4].toString(), request);
}

void tst_mqtt_endpoint_t::subscribing_again_brings_retained_status_again() {
    const QString topic = "local/api/v1/alice/status/e-1";
    publish(topic, {{"a", 1}}, true);
    QTRY_COMPARE(endpoint->counters().published.load(), quint64(2));  // with the state
    for (int i = 1; i <= 3; ++i) {
        endpoint->subscription_status_api(subscribe_t::subscribe);
        QTRY_COMPARE(messages->size(), i);
        QCOMPARE(messages->last(),
                 (QVariantList{"v1", "alice", "", "status", topic, QJsonObject{{"a", 1}}, true}));
    }
}

void tst_mqtt_endpoint_t::states_of_one_user_are_brought_and_nothing_follows() {
    const QString topic = "local/api/v1/alice/status/e-1";
    publish(topic, {{"a", 1}}, true);
    publish("local/api/v1/bob/status/e-1", {{"b", 1}}, true);
    QTRY_COMPARE(endpoint->counters().published.load(), quint64(3));
    for (int i = 1; i <= 3; ++i) {
        endpoint->show_states_of("alice");
        QTRY_COMPARE(messages->size(), i);
        QCOMPARE(messages->last(),
                 (QVariantList{"v1", "alice", "", "status", topic, QJsonObject{{"a", 1}}, true}));
    }
    mqtt_client_t host;
    QCOMPARE(broker->let_host_in(&host), 0);
    QCOMPARE(host.publish("local/api/v1/alice/status/e-2", "{}"), 0);
    QCOMPARE(alice->publish(request, "{}"), 0);
    QTRY_COMPARE(messages->size(), 4);
    QCOMPARE(messages->last()[3].toString(), QString("request"));
}

void tst_mqtt_endpoint_t::unsubscribed_status_stays_away() {
    mqtt_client_t host;
    QCOMPARE(broker->let_host_in(&host), 0);
    endpoint->subscription_status_api(subscribe_t::subscribe);
    endpoint->subscription_status_api(subscribe_t::unsubscribe);
    QCOMPARE(alice->publish(request, "{}"), 0);  // the broker has handled both
    QTRY_COMPARE(messages->size(), 1);
    QCOMPARE(host.publish("local/api/v1/alice/status/e-1", "{}"), 0);
    QCOMPARE(alice->publish(request, "{}"), 0);
    QTRY_COMPARE(messages->size(), 2);
    QCOMPARE(messages->last()[3].toString(), QString("request"));
}

void tst_mqtt_endpoint_t::status_without_an_object_is_an_empty_object() {
    mqtt_client_t host;
    QCOMPARE(broker->let_host_in(&host), 0);
    QCOMPARE(host.publish("local/api/v1/alice/status/e-1", "\xff{", true), 0);
    endpoint->subscription_status_api(subscribe_t::subscribe);
    QTRY_COMPARE(messages->size(), 1);
    QCOMPARE(messages->first()[5].toJsonObject(), QJsonObject());
    QCOMPARE(messages->first()[6].toBool(), true);
}

void tst_mqtt_endpoint_t::deleted_status_is_not_emitted() {
    mqtt_client_t host;
    QCOMPARE(broker->let_host_in(&host), 0);
    endpoint->subscription_status_api(subscribe_t::subscribe);
    QCOMPARE(alice->publish(request, "{}"), 0);
    QTRY_COMPARE(messages->size(), 1);
    QCOMPARE(host.publish("local/api/v1/alice/status/e-1", "", true), 0);
    QCOMPARE(host.publish("local/api/v1/alice/status/e-2", "{}", true), 0);
    QTRY_COMPARE(messages->size(), 2);
    QCOMPARE(messages->last()[4].toString(), QString("local/api/v1/alice/status/e-2"));
}

void tst_mqtt_endpoint_t::stored_retained_request_is_cleared_and_not_emitted() {
    const auto settings = broker->endpoint_settings();
    endpoint.reset();
    mqtt_client_t host;  // the broker refuses a user's
    QCOMPARE(broker->let_host_in(&host), 0);
    QCOMPARE(host.publish(request, "{\"a\":1}", true), 0);
    connect_endpoint(settings);
    QTRY_COMPARE(endpoint->counters().retained_requests_cleared.load(), quint64(1));
    QTRY_COMPARE(endpoint->counters().published.load(), quint64(2));
    QVERIFY(messages->isEmpty());
    mqtt_client_t again;
    QCOMPARE(again.sign_in(broker->settings.port, "alice", "alice-password"), 0);
    QVERIFY(again.subscribe("local/api/v1/alice/#"));
    QCOMPARE(again.publish(request, "{\"fence\":1}"), 0);
    QCOMPARE(again.heard(request), QByteArray("{\"fence\":1}"));
    QCOMPARE(again.count(request), 1);
}

void tst_mqtt_endpoint_t::live_retained_request_is_cleared_and_not_emitted() {
    mqtt_client_t host;  // the broker refuses a user's
    QCOMPARE(broker->let_host_in(&host), 0);
    QCOMPARE(host.publish(request, "{\"a\":1}", true), 0);
    QTRY_COMPARE(endpoint->counters().retained_requests_cleared.load(), quint64(1));
    QTRY_COMPARE(alice->count(request), 2);
    QCOMPARE(alice->messages().last().payload, QByteArray());
    QVERIFY(messages->isEmpty());
}

void tst_mqtt_endpoint_t::request_without_an_object_is_answered_400_data() {
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("broken") << QByteArray("{\"a\":");
    QTest::newRow("array") << QByteArray("[1]");
    QTest::newRow("text") << QByteArray("hello");
    QTest::newRow("binary") << QByteArray("\x00\xff\x01\xfe", 4);
    QTest::newRow("2000 levels") << QByteArray("{\"a\":").repeated(2000) + "1" +
                                        QByteArray("}").repeated(2000);
    QTest::newRow("1 MB") << QByteArray(1 << 20, 'x');
}

void tst_mqtt_endpoint_t::request_without_an_object_is_answered_400() {
    QFETCH(QByteArray, payload);
    QCOMPARE(alice->publish(request, payload), 0);
    QCOMPARE(alice->heard(answer), refusal);
    QCOMPARE(endpoint->counters().malformed_answered.load(), quint64(1));
    QVERIFY(messages->isEmpty());
    mqtt_client_t late;
    QCOMPARE(late.sign_in(broker->settings.port, "alice", "alice-password"), 0);
    QVERIFY(late.subscribe("local/api/v1/alice/#"));
    QCOMPARE(late.publish(request, "{}"), 0);
    late.heard(request);
    QCOMPARE(late.count(answer), 0);  // not retained
}

void tst_mqtt_endpoint_t::request_without_payload_is_an_empty_object() {
    QCOMPARE(alice->publish(request, ""), 0);
    QTRY_COMPARE(messages->size(), 1);
    QCOMPARE(messages->first()[5].toJsonObject(), QJsonObject());
}

void tst_mqtt_endpoint_t::malformed_request_is_not_answered_while_disabled() {
    endpoint->set_enable_api_message(false);
    QCOMPARE(alice->publish(request, "[]"), 0);
    QTRY_COMPARE(endpoint->counters().received.load(), quint64(1));
    QCOMPARE(endpoint->counters().malformed_answered.load(), quint64(0));
}

void tst_mqtt_endpoint_t::request_of_a_client_named_status_is_emitted_once() {
    endpoint->subscription_status_api(subscribe_t::subscribe);
    QCOMPARE(alice->publish("local/api/v1/alice/status/request/x", "{}"), 0);
    QCOMPARE(alice->publish(request, "{}"), 0);
    QTRY_VERIFY(!messages->isEmpty() && messages->last()[4].toString() == request);
    QCOMPARE(messages->size(), 2);
}

void tst_mqtt_endpoint_t::burst_of_20000_retained_is_complete() {
    constexpr int total = 20'000;
    for (int i = 0; i < total; ++i) {
        publish(QStringLiteral("local/api/v1/bob/status/e-%1").arg(i), {{"n", i}}, true);
    }
    QVERIFY(wait_until([this]() { return endpoint->counters().published == total + 1; }, 60'000));
    mqtt_client_t bob;
    QCOMPARE(bob.sign_in(broker->settings.port, "bob", "bob-password"), 0);
    QVERIFY(bob.subscribe("local/api/v1/bob/#"));
    QVERIFY(wait_until([&bob]() { return bob.messages().size() == total; }, 60'000));
    endpoint->subscription_status_api(subscribe_t::subscribe);
    QVERIFY(wait_until([this]() { return messages->size() == total; }, 60'000));
    QCOMPARE(endpoint->counters().dropped_full.load(), quint64(0));
}

void tst_mqtt_endpoint_t::publish_without_a_value_deletes_nothing() {
    publish("local/api/v1/alice/status/e-1", {{"a", 1}}, true);
    endpoint->publish("local/api/v1/alice/status/e-1", QJsonValue(QJsonValue::Undefined),
                      qos_t::exactly_once, true, false);
    QCOMPARE(endpoint->counters().refused.load(), quint64(1));
    publish("local/api/v1/alice/status/e-2", {});
    alice->heard("local/api/v1/alice/status/e-2");
    QCOMPARE(alice->count("local/api/v1/alice/status/e-1"), 1);
}

void tst_mqtt_endpoint_t::impossible_topic_is_refused_and_counted() {
    publish("local/api/v1/alice/#", {});
    publish("", {});
    publish("local/api/v1/alice/status/elements/objects_list/e 1", {}, true);
    publish("local/api/v1/alice/my phone/status/get/x", {});  // an answer goes where it is asked
    publish(answer, {{"a", 1}});
    QCOMPARE(alice->heard(answer), QByteArray("{\"a\":1}"));
    QCOMPARE(alice->messages().size(), 2);
    QCOMPARE(endpoint->counters().refused.load(), quint64(3));
}

void tst_mqtt_endpoint_t::full_queue_drops_and_counts() {
    const fakes::recording_logger_t logger;
    auto settings = broker->endpoint_settings();
    settings.queue_messages = 100;
    connect_endpoint(settings);
    QTRY_COMPARE(endpoint->counters().published.load(), quint64(1));
    for (int i = 0; i < 1'000; ++i) {
        publish(QStringLiteral("local/api/v1/bob/status/e-%1").arg(i), {}, true);
    }
    // 20 in flight, 100 waiting: nothing is acknowledged before events are handled.
    QCOMPARE(endpoint->counters().dropped_full.load(), quint64(880));
    QSignalSpy lost(endpoint.get(), &mqtt_endpoint_t::states_lost);
    QTRY_COMPARE(endpoint->counters().published.load(), quint64(121));
    QCOMPARE(lost.size(), 1);
    QCOMPARE(logger.lines().size(), 2);
    QCOMPARE(logger.lines().last().level, 2);
    QCOMPARE(logger.count("100 messages of "), 1);
    QCOMPARE(logger.count("Dropped 880 states and 0 answers"), 1);
}

void tst_mqtt_endpoint_t::a_mark_comes_back_behind_what_was_published() {
    QSignalSpy marked(endpoint.get(), &mqtt_endpoint_t::marked);
    const quint64 before = endpoint->counters().published.load();
    for (int i = 0; i < 100; ++i) {
        publish(QStringLiteral("local/api/v1/bob/status/e-%1").arg(i), {}, true);
    }
    endpoint->mark(7);
    publish(answer, {{"behind", 1}});
    QCOMPARE(marked.size(), 0);
    QVERIFY(marked.wait());
    QCOMPARE(marked.first(), (QVariantList{quint64(7), true}));
    QVERIFY(endpoint->counters().published.load() >= before + 100);
    QVERIFY(endpoint->counters().published.load() <= before + 101);
}

void tst_mqtt_endpoint_t::a_mark_comes_back_without_a_connection() {
    QSignalSpy marked(endpoint.get(), &mqtt_endpoint_t::marked);
    publish("local/api/v1/bob/status/e-1", {}, true);
    endpoint->mark(1);
    QCOMPARE(marked.size(), 0);
    broker.reset();
    QTRY_COMPARE(marked.size(), 1);
    endpoint->mark(2);
    QCOMPARE(marked.size(), 2);
    QCOMPARE(marked.last(), (QVariantList{quint64(2), false}));
}

void tst_mqtt_endpoint_t::connection_topic_tells_the_state() {
    QVERIFY(alice->subscribe(broker->settings.connection_topic));
    QCOMPARE(alice->heard(broker->settings.connection_topic), QByteArray("{\"state\":\"online\"}"));
    alice->forget();
    QSignalSpy stopped(endpoint.get(), &mqtt_endpoint_t::stopped);
    publish(answer, {{"last", 1}});
    endpoint->stop();
    QVERIFY(stopped.size() == 1 || stopped.wait());
    QCOMPARE(alice->heard(broker->settings.connection_topic),
             QByteArray("{\"state\":\"offline\"}"));
    QCOMPARE(alice->heard(answer), QByteArray("{\"last\":1}"));
    QCOMPARE(alice->count(broker->settings.connection_topic), 1);  // and no last will

    alice->forget();
    endpoint->start();
    QCOMPARE(alice->heard(broker->settings.connection_topic), QByteArray("{\"state\":\"online\"}"));
    alice->forget();
    endpoint.reset();  // without a word: the broker publishes the last will
    QCOMPARE(alice->heard(broker->settings.connection_topic),
             QByteArray("{\"state\":\"offline\"}"));
}

QTEST_GUILESS_MAIN(tst_mqtt_endpoint_t)
#include "tst_mqtt_endpoint_t.moc"
