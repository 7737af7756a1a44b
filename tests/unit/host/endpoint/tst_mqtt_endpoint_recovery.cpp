#include <signal.h>

#include <QJsonObject>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

#include "endpoint/mqtt_endpoint_t.h"
#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"

using comunication::mqtt_endpoint_t;
using comunication::utility::qos_t;
using comunication::utility::subscribe_t;
using namespace kit;

/// The endpoint with a broker that dies, refuses or does not answer.
class tst_mqtt_endpoint_recovery : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void killed_broker_comes_back_with_every_subscription();
    void publishing_while_disconnected_drops_and_counts();
    void wrong_password_is_reported();
    void broker_that_never_answers_is_given_up();
    void stop_without_a_broker_ends_at_once();
    void stop_at_a_silent_broker_is_bounded();
};

void tst_mqtt_endpoint_recovery::killed_broker_comes_back_with_every_subscription() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    mqtt_endpoint_t endpoint(broker.endpoint_settings());
    QSignalSpy connected(&endpoint, &mqtt_endpoint_t::connected);
    QSignalSpy disconnected(&endpoint, &mqtt_endpoint_t::disconnected);
    QSignalSpy messages(&endpoint, &mqtt_endpoint_t::api_message);
    connect(&broker.process, &broker::broker_process_t::listening, &endpoint, [&]() {
        endpoint.set_broker(broker.process.process_id(), broker.process.host_password());
    });
    endpoint.set_enable_api_message(true);
    endpoint.subscription_status_api(subscribe_t::subscribe);
    endpoint.start();
    QVERIFY(connected.wait());

    ::kill(pid_t(broker.process.process_id()), SIGKILL);
    QTRY_COMPARE(disconnected.size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(connected.size(), 2, 10'000);
    QCOMPARE(connected.last().first().toBool(), true);
    QCOMPARE(endpoint.counters().reconnects.load(), quint64(1));

    mqtt_client_t host;
    QCOMPARE(broker.let_host_in(&host), 0);
    QCOMPARE(host.publish("local/api/v1/alice/status/e-1", "{}"), 0);
    QTRY_COMPARE(messages.size(), 1);
    mqtt_client_t alice;
    QCOMPARE(alice.sign_in(broker.settings.port, "alice", "alice-password"), 0);
    QVERIFY(alice.subscribe("local/api/v1/alice/#"));
    QCOMPARE(alice.publish("local/api/v1/alice/phone/request/x", "{}"), 0);
    QTRY_COMPARE(messages.size(), 2);
    endpoint.publish("local/api/v1/alice/phone/status/x", QJsonObject{}, qos_t::exactly_once, false,
                     false);
    QCOMPARE(alice.heard("local/api/v1/alice/phone/status/x"), QByteArray("{}"));
}

void tst_mqtt_endpoint_recovery::publishing_while_disconnected_drops_and_counts() {
    comunication::endpoint_settings_t settings;
    settings.port = free_port();
    mqtt_endpoint_t endpoint(settings);
    endpoint.start();
    endpoint.publish("a", QJsonObject{}, qos_t::exactly_once, true, false);
    endpoint.publish_delete("a", qos_t::exactly_once, true);
    QCOMPARE(endpoint.counters().dropped_disconnected.load(), quint64(2));
}

void tst_mqtt_endpoint_recovery::wrong_password_is_reported() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    auto settings = broker.endpoint_settings();
    settings.password = "secret-but-wrong";
    mqtt_endpoint_t endpoint(settings);
    QSignalSpy refused(&endpoint, &mqtt_endpoint_t::refused);
    QSignalSpy connected(&endpoint, &mqtt_endpoint_t::connected);
    endpoint.start();
    QVERIFY(refused.wait());
    QVERIFY(!refused.first().first().toString().isEmpty());
    QVERIFY(!refused.first().first().toString().contains("secret"));
    QVERIFY(refused.wait());  // it tries again
    QVERIFY(connected.isEmpty());
}

void tst_mqtt_endpoint_recovery::broker_that_never_answers_is_given_up() {
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    comunication::endpoint_settings_t settings;
    settings.port = silent.serverPort();
    settings.connect_timeout = std::chrono::milliseconds(50);
    settings.reconnect_shortest = settings.reconnect_longest = std::chrono::milliseconds(10);
    mqtt_endpoint_t endpoint(settings);
    endpoint.start();
    int arrived = 0;
    connect(&silent, &QTcpServer::newConnection, &silent, [&arrived]() { ++arrived; });
    QTRY_VERIFY(arrived >= 3);
}

void tst_mqtt_endpoint_recovery::stop_without_a_broker_ends_at_once() {
    comunication::endpoint_settings_t settings;
    settings.port = free_port();
    mqtt_endpoint_t endpoint(settings);
    QSignalSpy stopped(&endpoint, &mqtt_endpoint_t::stopped);
    endpoint.start();
    endpoint.stop();
    QCOMPARE(stopped.size(), 1);
}

void tst_mqtt_endpoint_recovery::stop_at_a_silent_broker_is_bounded() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    auto settings = broker.endpoint_settings();
    settings.stop_timeout = std::chrono::milliseconds(100);
    mqtt_endpoint_t endpoint(settings);
    QSignalSpy connected(&endpoint, &mqtt_endpoint_t::connected);
    QSignalSpy stopped(&endpoint, &mqtt_endpoint_t::stopped);
    endpoint.start();
    QVERIFY(connected.wait());
    const pid_t id = pid_t(broker.process.process_id());
    ::kill(id, SIGSTOP);
    endpoint.stop();
    QVERIFY(stopped.isEmpty());
    const bool ended = stopped.wait(2'000);
    ::kill(id, SIGCONT);
    QVERIFY(ended);
    QCOMPARE(stopped.size(), 1);
}

QTEST_GUILESS_MAIN(tst_mqtt_endpoint_recovery)
#include "tst_mqtt_endpoint_recovery.moc"
