#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {
constexpr int not_authorized = 135;  // MQTT 5 reason code
}  // namespace

/// Whatever a client sends gets a clear answer, and the next request is answered as ever.
class tst_bad_input : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void a_payload_that_is_no_object_is_answered_data();
    void a_payload_that_is_no_object_is_answered();
    void a_malformed_request_is_answered_data();
    void a_malformed_request_is_answered();
    void a_large_object_is_read();
    void an_empty_payload_is_an_empty_object();
    void a_retained_request_is_refused();
    void a_topic_with_too_few_levels_is_ignored();
    void an_oversized_packet_hurts_its_sender_only();

 private:
    void verify_answer(const QByteArray& _payload, const QJsonObject& _expected);

    host_process_t host;
    mqtt_client_t alice;
};

void tst_bad_input::initTestCase() {
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(join(alice, host, "alice"));
}

void tst_bad_input::cleanup() {
    QVERIFY(host.is_running());
    const QJsonObject answer = alice.request(request_topic("alice", "get", "e-lamp"));
    QCOMPARE(answer["data"]["name"], QJsonValue("Kitchen lamp"));
}

void tst_bad_input::verify_answer(const QByteArray& _payload, const QJsonObject& _expected) {
    const QString topic = "local/api/v1/alice/me/status/set/elements/objects_list/e-lamp";
    alice.forget();
    QCOMPARE(alice.publish(request_topic("alice", "set", "e-lamp"), _payload), 0);
    const auto answer = alice.wait_for(topic);
    QVERIFY(answer);
    QCOMPARE(answer->json(), _expected);
    QVERIFY(!answer->retained);
}

void tst_bad_input::a_payload_that_is_no_object_is_answered_data() {
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("text") << QByteArray("hello");
    QTest::newRow("cut off") << QByteArray(R"({"data": {"functions")");
    QTest::newRow("array") << QByteArray("[1, 2]");
    QTest::newRow("number") << QByteArray("1");
    QTest::newRow("null") << QByteArray("null");
    QTest::newRow("binary") << QByteArray("\x00\xff\xfe\x80{}", 6);
    QTest::newRow("invalid UTF-8") << QByteArray("{\"data\": \"\xc3\x28\"");
    QTest::newRow("2,000 levels") << QByteArray(R"({"a":)").repeated(2000) + "1" +
                                         QByteArray("}").repeated(2000);
    QTest::newRow("1 MB of text") << QByteArray(1000000, 'x');
}

void tst_bad_input::a_payload_that_is_no_object_is_answered() {
    QFETCH(QByteArray, payload);
    verify_answer(payload, {{"error", 400}, {"message", "Non-compliant payload"}});
}

void tst_bad_input::a_malformed_request_is_answered_data() {
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("no data") << QByteArray("{}");
    QTest::newRow("data is a text") << QByteArray(R"({"data": "x"})");
    QTest::newRow("data is empty") << QByteArray(R"({"data": {}})");
    QTest::newRow("functions is empty") << QByteArray(R"({"data": {"functions": {}}})");
    QTest::newRow("functions is an array") << QByteArray(R"({"data": {"functions": [1]}})");
}

void tst_bad_input::a_malformed_request_is_answered() {
    QFETCH(QByteArray, payload);
    verify_answer(payload, {{"error", 400}, {"message", "Non-compliant payload"}});
}

void tst_bad_input::a_large_object_is_read() {
    QJsonObject payload = write_payload("execute", 1);
    payload.insert("padding", QString(1000000, 'x'));
    const QJsonObject answer = alice.request(request_topic("alice", "set", "e-lamp"), payload);
    QCOMPARE(answer["data"]["functions"]["execute"], QJsonValue("202"));
}

void tst_bad_input::an_empty_payload_is_an_empty_object() {
    alice.forget();
    QCOMPARE(alice.publish(request_topic("alice", "get", "e-lamp"), {}), 0);
    const auto answer =
        alice.wait_for("local/api/v1/alice/me/status/get/elements/objects_list/e-lamp");
    QVERIFY(answer);
    QCOMPARE(answer->json()["data"]["name"], QJsonValue("Kitchen lamp"));
}

void tst_bad_input::a_retained_request_is_refused() {
    const QString topic = request_topic("alice", "set", "e-lamp");
    alice.request(request_topic("alice", "get"));  // the retained states are there now
    alice.forget();
    QCOMPARE(alice.publish(topic, R"({"data": {"functions": {"dim": 99}}})", true), not_authorized);
    QCOMPARE(value_in(alice.request(request_topic("alice", "get", "e-lamp")), "dim"), "40");
    for (const auto& message : alice.messages()) {
        QVERIFY2(message.topic != state_topic("alice", "e-lamp"), "the retained request was run");
    }
    // Nor is it on the broker: a host that starts anew would else run it at its subscription.
    mqtt_client_t later;
    QVERIFY(join(later, host, "alice"));
    later.request(request_topic("alice", "get"));
    for (const auto& message : later.messages()) {
        QVERIFY2(message.topic != topic, "the retained request is left on the broker");
    }
}

void tst_bad_input::a_topic_with_too_few_levels_is_ignored() {
    for (const char* topic : {"local/api/v1/alice/me/request", "local/api/v1/alice/me/request/"}) {
        QVERIFY2(alice.publish(topic, "{}") >= 0, topic);
    }
}

void tst_bad_input::an_oversized_packet_hurts_its_sender_only() {
    mqtt_client_t bob;
    QVERIFY(join(bob, host, "bob"));
    QSignalSpy ended(&bob, &mqtt_client_t::disconnected);
    bob.publish(request_topic("bob", "get"), QByteArray(20000000, ' '));
    QVERIFY(alice.is_connected());
}

QTEST_GUILESS_MAIN(tst_bad_input)
#include "tst_bad_input.moc"
