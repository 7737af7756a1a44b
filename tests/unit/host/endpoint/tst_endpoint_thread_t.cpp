#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

#include "endpoint/endpoint_thread_t.h"
#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"

using comunication::endpoint_thread_t;
using comunication::mqtt_endpoint_t;
using comunication::utility::qos_t;
using namespace kit;

class tst_endpoint_thread_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void posted_calls_run_on_its_own_thread();
    void stop_sends_what_was_posted_before();
    void it_may_be_started_again();
    void destruction_without_start_is_quiet();
    void destruction_amid_a_burst_is_safe();
    void destruction_without_a_broker_is_safe();
};

void tst_endpoint_thread_t::posted_calls_run_on_its_own_thread() {
    endpoint_thread_t held({});
    held.start();
    QThread* seen = nullptr;
    QMetaObject::invokeMethod(
        held.endpoint(), [&seen]() { seen = QThread::currentThread(); },
        Qt::BlockingQueuedConnection);
    QVERIFY(seen != nullptr && seen != QThread::currentThread());
    QCOMPARE(seen, held.endpoint()->thread());
}

void tst_endpoint_thread_t::stop_sends_what_was_posted_before() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    mqtt_client_t bob;
    QCOMPARE(bob.sign_in(broker.settings.port, "bob", "bob-password"), 0);
    QVERIFY(bob.subscribe("local/api/v1/bob/#"));
    endpoint_thread_t held(broker.endpoint_settings());
    QSignalSpy connected(held.endpoint(), &mqtt_endpoint_t::connected);
    held.start();
    QVERIFY(connected.wait());
    for (int i = 0; i < 500; ++i) {
        QMetaObject::invokeMethod(held.endpoint(), [endpoint = held.endpoint(), i]() {
            endpoint->publish("local/api/v1/bob/status/x", QJsonObject{{"n", i}},
                              qos_t::exactly_once, false, false);
        });
    }
    held.stop();
    QTRY_COMPARE(bob.messages().size(), 500);
    QCOMPARE(bob.messages().last().payload, QByteArray("{\"n\":499}"));
}

void tst_endpoint_thread_t::it_may_be_started_again() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    endpoint_thread_t held(broker.endpoint_settings());
    QSignalSpy connected(held.endpoint(), &mqtt_endpoint_t::connected);
    held.start();
    QVERIFY(connected.wait());
    held.stop();
    held.stop();
    held.start();
    QTRY_COMPARE(connected.size(), 2);
}

void tst_endpoint_thread_t::destruction_without_start_is_quiet() {
    const endpoint_thread_t held({});
    QVERIFY(held.endpoint() != nullptr);
}

void tst_endpoint_thread_t::destruction_amid_a_burst_is_safe() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    auto settings = broker.endpoint_settings();
    settings.stop_timeout = std::chrono::milliseconds(20);
    auto held = std::make_unique<endpoint_thread_t>(settings);
    QSignalSpy connected(held->endpoint(), &mqtt_endpoint_t::connected);
    held->start();
    QVERIFY(connected.wait());
    for (int i = 0; i < 20'000; ++i) {
        QMetaObject::invokeMethod(held->endpoint(), [endpoint = held->endpoint(), i]() {
            endpoint->publish(QString::number(i), QJsonObject{}, qos_t::exactly_once, true, false);
        });
    }
    held.reset();
    mqtt_client_t host;  // the broker is well
    QCOMPARE(broker.let_host_in(&host), 0);
}

void tst_endpoint_thread_t::destruction_without_a_broker_is_safe() {
    comunication::endpoint_settings_t settings;
    settings.port = free_port();
    endpoint_thread_t held(settings);
    QSignalSpy disconnected(held.endpoint(), &mqtt_endpoint_t::disconnected);
    held.start();
    held.stop();
    QVERIFY(disconnected.isEmpty());
}

QTEST_GUILESS_MAIN(tst_endpoint_thread_t)
#include "tst_endpoint_thread_t.moc"
