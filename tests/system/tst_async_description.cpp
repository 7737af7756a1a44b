#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// docs/asyncapi.yaml against what really passes: each message fits its channel, and each message
/// of each channel has been there.
class tst_async_description : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void live_traffic_fits_the_description();
    void what_does_not_fit_is_found_data();
    void what_does_not_fit_is_found();

 private:
    struct verdict_t {
        int status;
        QString said;
    };
    static verdict_t judged(const QByteArray& _lines);
    static QByteArray line(const QString& _topic, const QByteArray& _payload);
    /// What the user has got so far.
    static QByteArray lines(const mqtt_client_t& _user, bool _with_requests = true);

    host_process_t host;
};

namespace {

const auto lamp = QStringLiteral("e-kitchen-ceiling");

}  // namespace

tst_async_description::verdict_t tst_async_description::judged(const QByteArray& _lines) {
    QProcess checker;
    kit::end_with_test(&checker);
    checker.setProcessChannelMode(QProcess::MergedChannels);
    // Debian's own, which has Debian's libraries.
    checker.start("/usr/bin/python3", {QStringLiteral(CHECKER), QStringLiteral(DESCRIPTION)});
    checker.write(_lines);
    checker.closeWriteChannel();
    const bool has_ended = wait_until([&]() { return checker.state() == QProcess::NotRunning; }) &&
                           checker.exitStatus() == QProcess::NormalExit;
    return {has_ended ? checker.exitCode() : -1, QString::fromUtf8(checker.readAll())};
}

QByteArray tst_async_description::line(const QString& _topic, const QByteArray& _payload) {
    const QJsonObject packet{{"topic", _topic}, {"payload", QString::fromUtf8(_payload)}};
    return QJsonDocument(packet).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray tst_async_description::lines(const mqtt_client_t& _user, bool _with_requests) {
    QByteArray all;
    const auto messages = _user.messages();
    for (const auto& message : messages) {
        if (_with_requests || !message.topic.contains("/request/")) {
            all += line(message.topic, message.payload);
        }
    }
    return all;
}

void tst_async_description::initTestCase() {
    QVERIFY2(host.control({"import", QStringLiteral(SAMPLE)}) == 0, qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_async_description::live_traffic_fits_the_description() {
    mqtt_client_t alice;
    mqtt_client_t bob;
    QCOMPARE(alice.sign_in(host.port(), "alice", "sample-alice"), 0);
    QCOMPARE(bob.sign_in(host.port(), "bob", "sample-bob"), 0);
    QVERIFY(alice.subscribe("local/api/v1/alice/#") && bob.subscribe("local/api/v1/bob/#"));
    QVERIFY(alice.subscribe("local/installation/0001/connection"));
    QVERIFY(alice.wait_for("local/installation/0001/connection"));

    alice.request(request_topic("alice", "get"));
    alice.request(request_topic("alice", "get"),
                  {{"filters", QJsonObject{{"types", QJsonArray{17}},
                                           {"functions", QJsonArray{"setpoint"}}}}});
    QCOMPARE(alice.publish(request_topic("alice", "get"), {}), 0);
    alice.request(request_topic("alice", "get", lamp));
    alice.request(request_topic("alice", "set", lamp), write_payload("execute", 0));
    QVERIFY(alice.wait_for([](const auto& _message) {
        return _message.topic == state_topic("alice", lamp) &&
               value_in(_message.json(), "execute") == "0";
    }));
    alice.request(
        request_topic("alice", "set"),
        {{"data",
          QJsonObject{
              {lamp, QJsonObject{{"functions", QJsonObject{{"execute", 1}, {"level", 40}}}}},
              {"e-nowhere", QJsonObject{{"functions", QJsonObject{{"execute", 1}}}}}}}});
    // Who may only read; a right that goes.
    bob.request(request_topic("bob", "set", lamp), write_payload("execute", 0));
    QCOMPARE(host.control({"grant", "bob", lamp, "deny"}), 0);
    QVERIFY(bob.wait_for([](const auto& _message) {
        return _message.topic == state_topic("bob", lamp) && _message.payload.isEmpty();
    }));
    const QByteArray right = lines(alice) + lines(bob);

    // Requests that are wrong, and each kind of answer to one.
    alice.forget();
    bob.forget();
    alice.request(request_topic("alice", "get"),
                  {{"filters", QJsonObject{{"types", QJsonArray()}}}});
    alice.request(request_topic("alice", "get", "e-nowhere"));
    bob.request(request_topic("bob", "get", lamp));
    alice.request(request_topic("alice", "set", lamp), {{"data", 1}});
    alice.request(request_topic("alice", "set"), {{"data", 1}});
    const verdict_t verdict = judged(right + lines(alice, false) + lines(bob, false));
    QVERIFY2(verdict.status == 0, qPrintable(verdict.said));
}

void tst_async_description::what_does_not_fit_is_found_data() {
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("reason");
    const QString answer = "local/api/v1/alice/me/status/get/elements/objects_list/" + lamp;
    QTest::newRow("a value that is no text")
        << answer << QByteArray(R"({"data":{"name":"L","type":1,"functions":{"e":{"value":1}}}})")
        << "not of type 'string'";
    QTest::newRow("another member")
        << answer
        << QByteArray(R"({"data":{"name":"L","type":1,"functions":{"e":{"value":"1"}},"x":1}})")
        << "'x' was unexpected";
    QTest::newRow("an error that is not known")
        << answer << QByteArray(R"({"error":500,"message":"m"})") << "500 is not one of";
    QTest::newRow("no JSON") << answer << QByteArray("{") << "fits none of element";
    QTest::newRow("another topic")
        << QStringLiteral("local/api/v2/alice/x") << QByteArray("{}") << "is on 0 channels";
}

void tst_async_description::what_does_not_fit_is_found() {
    QFETCH(QString, topic);
    QFETCH(QByteArray, payload);
    QFETCH(QString, reason);
    const verdict_t verdict = judged(line(topic, payload));
    QCOMPARE(verdict.status, 1);
    QVERIFY2(verdict.said.section('\n', 0, 0).contains(reason), qPrintable(verdict.said));
    QVERIFY(verdict.said.contains("no gone has come on state"));
}

QTEST_GUILESS_MAIN(tst_async_description)
#include "tst_async_description.moc"
