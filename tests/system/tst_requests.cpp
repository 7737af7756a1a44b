#include <QtTest>

#include "system/support/small_home.h"

using namespace support;

/// Requests of API users, through the real broker, host and plugin.
class tst_requests : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void every_readable_element_has_a_retained_state();
    void read_one_gives_the_element();
    void read_all_gives_what_is_granted();
    void filters_restrict_types_and_functions();
    void a_write_comes_back_as_a_state();
    void a_scenario_takes_the_requested_state();
    void a_thermostat_is_written_by_its_full_function_name();
    void a_list_write_answers_for_each_element();
    void a_reader_may_not_write();
    void a_writer_may_not_read();
    void unknown_elements_and_topics_are_told();

 private:
    host_process_t host;
    mqtt_client_t alice;
    mqtt_client_t bob;
    mqtt_client_t carol;
};

void tst_requests::initTestCase() {
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(join(bob, host, "bob"));
    QVERIFY(join(carol, host, "carol"));
}

void tst_requests::every_readable_element_has_a_retained_state() {
    for (const char* id : {"e-lamp", "e-dim", "e-night", "e-therm"}) {
        const auto state = alice.wait_for(state_topic("alice", id));
        QVERIFY2(state, id);
        QVERIFY2(state->retained, id);
    }
    QVERIFY(bob.wait_for(state_topic("bob", "e-lamp")));
    // The answer comes behind the retained states of the same subscription.
    QCOMPARE(bob.request(request_topic("bob", "get"))["data"].toObject().keys(),
             QStringList{"e-lamp"});
    QCOMPARE(bob.messages().size(), 3);  // the state, its own request and the answer
}

void tst_requests::read_one_gives_the_element() {
    const QJsonObject answer = alice.request(request_topic("alice", "get", "e-dim"));
    const QJsonObject expected{{"name", "Living room dimmer"},
                               {"type", 2},
                               {"functions", QJsonObject{{"level", QJsonObject{{"value", "30"}}},
                                                         {"spare", QJsonObject{{"value", ""}}}}}};
    QCOMPARE(answer["data"].toObject(), expected);
}

void tst_requests::read_all_gives_what_is_granted() {
    const QJsonObject answer = alice.request(request_topic("alice", "get"));
    QCOMPARE(answer["data"].toObject().keys(),
             (QStringList{"e-dim", "e-lamp", "e-night", "e-therm"}));
    QVERIFY(carol.request(request_topic("carol", "get"))["data"].toObject().isEmpty());
}

void tst_requests::filters_restrict_types_and_functions() {
    const auto filtered = [this](const QString& topic, const QJsonObject& filters) {
        return alice.request(topic, {{"filters", filters}});
    };
    QCOMPARE(filtered(request_topic("alice", "get"), {{"types", QJsonArray{8, 17}}})["data"]
                 .toObject()
                 .keys(),
             (QStringList{"e-night", "e-therm"}));
    const QJsonObject thermostat =
        filtered(request_topic("alice", "get", "e-therm"), {{"functions", QJsonArray{"setpoint"}}});
    QCOMPARE(thermostat["data"]["functions"].toObject().keys(), QStringList{"thermo/setpoint"});
    QCOMPARE(filtered(request_topic("alice", "get", "e-lamp"), {{"types", QJsonArray{8}}})["error"],
             QJsonValue(409));
    QCOMPARE(
        filtered(request_topic("alice", "get", "e-lamp"), {{"functions", QJsonArray{}}})["error"],
        QJsonValue(400));
}

void tst_requests::a_write_comes_back_as_a_state() {
    alice.forget();
    bob.forget();
    const QJsonObject answer =
        alice.request(request_topic("alice", "set", "e-lamp"), write_payload("execute", true));
    QCOMPARE(answer["data"]["functions"]["execute"], QJsonValue("202"));
    for (auto [client, user] : {std::pair(&alice, "alice"), std::pair(&bob, "bob")}) {
        const auto state = client->wait_for(state_topic(user, "e-lamp"));
        QVERIFY2(state, user);
        QCOMPARE(value_in(state->json(), "execute"), "1");
    }
    QCOMPARE(value_in(bob.request(request_topic("bob", "get", "e-lamp")), "execute"), "1");
}

void tst_requests::a_scenario_takes_the_requested_state() {
    alice.forget();
    alice.request(request_topic("alice", "set", "e-night"), write_payload("execute", true));
    const auto state = alice.wait_for(state_topic("alice", "e-night"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "execute"), "true");
}

void tst_requests::a_thermostat_is_written_by_its_full_function_name() {
    alice.forget();
    const QJsonObject refused =
        alice.request(request_topic("alice", "set", "e-therm"), write_payload("setpoint", 23));
    QCOMPARE(refused["data"]["functions"]["setpoint"], QJsonValue("404"));
    alice.request(request_topic("alice", "set", "e-therm"), write_payload("thermo/setpoint", 23.5));
    const auto state = alice.wait_for(state_topic("alice", "e-therm"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "thermo/setpoint"), "23.5");
}

void tst_requests::a_list_write_answers_for_each_element() {
    const QJsonObject functions{{"functions", QJsonObject{{"level", 55}}}};
    const QJsonObject answer = alice.request(
        request_topic("alice", "set"),
        {{"data",
          QJsonObject{{"e-dim", functions}, {"e-none", functions}, {"e-secret", functions}}}});
    QCOMPARE(answer["data"]["e-dim"]["functions"]["level"], QJsonValue("202"));
    QCOMPARE(answer["data"]["e-none"],
             (QJsonObject{{"error", 404}, {"message", "Non found element e-none"}}));
    QCOMPARE(answer["data"]["e-secret"],
             (QJsonObject{{"error", 401}, {"message", "Configure user on API on App"}}));
}

void tst_requests::a_reader_may_not_write() {
    const QJsonObject answer =
        bob.request(request_topic("bob", "set", "e-lamp"), write_payload("execute", 0));
    QCOMPARE(answer["data"]["error"], QJsonValue(401));
    QCOMPARE(value_in(bob.request(request_topic("bob", "get", "e-lamp")), "execute"), "1");
}

void tst_requests::a_writer_may_not_read() {
    const QJsonObject refused = carol.request(request_topic("carol", "get", "e-lamp"));
    QCOMPARE(refused["error"], QJsonValue(401));
    QCOMPARE(refused["message"], QJsonValue("Unauthorized user: configure user API on App"));
    bob.forget();
    const QJsonObject written =
        carol.request(request_topic("carol", "set", "e-lamp"), write_payload("execute", "0"));
    QCOMPARE(written["data"]["functions"]["execute"], QJsonValue("202"));
    const auto state = bob.wait_for(state_topic("bob", "e-lamp"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "execute"), "0");
    for (const auto& message : carol.messages()) {
        QVERIFY2(!message.topic.startsWith("local/api/v1/carol/status"), qPrintable(message.topic));
    }
}

void tst_requests::unknown_elements_and_topics_are_told() {
    QCOMPARE(alice.request(request_topic("alice", "get", "unknown"))["message"],
             QJsonValue("Not found element unknown"));
    QCOMPARE(alice.request(request_topic("alice", "get", "e-hidden"))["error"], QJsonValue(404));
    QCOMPARE(alice.request(request_topic("alice", "delete"))["error"], QJsonValue(405));
}

QTEST_GUILESS_MAIN(tst_requests)
#include "tst_requests.moc"
