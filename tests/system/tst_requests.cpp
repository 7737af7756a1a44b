#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
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
};

void tst_requests::initTestCase() {
    const QJsonObject hidden{{"name", "Hidden"},
                             {"type", 11},
                             {"flags", 0},
                             {"functions", QJsonObject{{"execute", "i-lamp"}}}};
    QJsonObject home = with(small_home(), "elements/e-hidden", hidden);
    home = with(home, "permissions/u-alice/e-hidden", "read");
    home = with(home, "permissions/u-bob/e-hidden", "read");
    home = with(home, "elements/e-lamp/functions/spare", QJsonValue::Null);
    QVERIFY2(host.import(home), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(join(bob, host, "bob"));
}

void tst_requests::every_readable_element_has_a_retained_state() {
    // The server is ready when it answers; the last states may be on their way then.
    for (const char* id : {"e-lamp", "e-night", "e-therm"}) {
        QVERIFY2(alice.wait_for(state_topic("alice", id)), id);
    }
    alice.forget();
    QVERIFY(join(alice, host, "alice"));
    for (const char* id : {"e-lamp", "e-night", "e-therm"}) {
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
    const QJsonObject answer = alice.request(request_topic("alice", "get", "e-lamp"));
    const QJsonObject expected{{"name", "Kitchen lamp"},
                               {"type", 1},
                               {"functions", QJsonObject{{"dim", QJsonObject{{"value", "40"}}},
                                                         {"execute", QJsonObject{{"value", "0"}}},
                                                         {"spare", QJsonObject{{"value", ""}}}}}};
    QCOMPARE(answer["data"].toObject(), expected);
}

void tst_requests::read_all_gives_what_is_granted() {
    const QJsonObject answer = alice.request(request_topic("alice", "get"));
    QCOMPARE(answer["data"].toObject().keys(), (QStringList{"e-lamp", "e-night", "e-therm"}));
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
    for (auto [client, user] : {std::pair(&alice, "alice"), std::pair(&bob, "bob")}) {
        client->request(request_topic(user, "get"));  // the retained states are there now
        client->forget();
    }
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
    alice.request(request_topic("alice", "get"));
    alice.forget();
    alice.request(request_topic("alice", "set", "e-night"), write_payload("execute", true));
    const auto state = alice.wait_for(state_topic("alice", "e-night"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "execute"), "true");
}

void tst_requests::a_thermostat_is_written_by_its_full_function_name() {
    alice.request(request_topic("alice", "get"));
    alice.forget();
    const QJsonObject refused =
        bob.request(request_topic("bob", "set", "e-therm"), write_payload("setpoint", 23));
    QCOMPARE(refused["data"]["functions"]["setpoint"], QJsonValue("404"));
    bob.request(request_topic("bob", "set", "e-therm"), write_payload("thermo/setpoint", 23.5));
    const auto state = alice.wait_for(state_topic("alice", "e-therm"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "thermo/setpoint"), "23.5");
}

void tst_requests::a_list_write_answers_for_each_element() {
    const QJsonObject functions{{"functions", QJsonObject{{"dim", 55}}}};
    const QJsonObject answer = alice.request(
        request_topic("alice", "set"),
        {{"data",
          QJsonObject{{"e-lamp", functions}, {"e-none", functions}, {"e-therm", functions}}}});
    QCOMPARE(answer["data"]["e-lamp"]["functions"]["dim"], QJsonValue("202"));
    QCOMPARE(answer["data"]["e-none"],
             (QJsonObject{{"error", 404}, {"message", "Non found element e-none"}}));
    QCOMPARE(answer["data"]["e-therm"],
             (QJsonObject{{"error", 401}, {"message", "Configure user on API on App"}}));
}

void tst_requests::a_reader_may_not_write() {
    const QJsonObject before = bob.request(request_topic("bob", "get", "e-lamp"));
    const QJsonObject answer =
        bob.request(request_topic("bob", "set", "e-lamp"), write_payload("execute", 7));
    QCOMPARE(answer["data"]["error"], QJsonValue(401));
    const QJsonObject after = bob.request(request_topic("bob", "get", "e-lamp"));
    QCOMPARE(value_in(after, "execute"), value_in(before, "execute"));
}

void tst_requests::a_writer_may_not_read() {
    const QJsonObject refused = bob.request(request_topic("bob", "get", "e-therm"));
    QCOMPARE(refused["error"], QJsonValue(401));
    QCOMPARE(refused["message"], QJsonValue("Unauthorized user: configure user API on App"));
    alice.request(request_topic("alice", "get"));
    alice.forget();
    const QJsonObject written =
        bob.request(request_topic("bob", "set", "e-therm"), write_payload("thermo/setpoint", "18"));
    QCOMPARE(written["data"]["functions"]["thermo/setpoint"], QJsonValue("202"));
    const auto state = alice.wait_for(state_topic("alice", "e-therm"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "thermo/setpoint"), "18");
    QCOMPARE(bob.request(request_topic("bob", "get"))["data"].toObject().keys(),
             QStringList{"e-lamp"});
    QCOMPARE(bob.count(state_topic("bob", "e-therm")), 0);
}

void tst_requests::unknown_elements_and_topics_are_told() {
    QCOMPARE(alice.request(request_topic("alice", "get", "unknown"))["message"],
             QJsonValue("Not found element unknown"));
    QCOMPARE(alice.request(request_topic("alice", "get", "e-hidden"))["error"], QJsonValue(404));
    QCOMPARE(alice.request(request_topic("alice", "delete"))["error"], QJsonValue(405));
}

QTEST_GUILESS_MAIN(tst_requests)
#include "tst_requests.moc"
