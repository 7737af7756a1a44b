#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {

constexpr int not_authorized = 135;  // MQTT 5 reason code

/// The small home and a user for each test that changes one: carol and dave have no rights, erin
/// may read and write the lamp, frank may read it.
QJsonObject home() {
    QJsonObject made = small_home();
    for (const char* name : {"carol", "dave", "erin", "frank"}) {
        made = with(made, QLatin1String("users/u-") + name,
                    QJsonObject{{"username", name}, {"password", password_of(name)}});
    }
    made = with(made, "permissions/u-erin/e-lamp", "readwrite");
    return with(made, "permissions/u-frank/e-lamp", "read");
}

}  // namespace

/// Who may do what, end to end: the broker's rules and the API's together.
class tst_rights : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void sign_in_needs_a_known_name_and_its_password_data();
    void sign_in_needs_a_known_name_and_its_password();
    void a_user_may_publish_below_its_own_requests_only_data();
    void a_user_may_publish_below_its_own_requests_only();
    void a_user_hears_its_own_tree_and_the_connection_only();
    void a_grant_is_effective_at_once();
    void a_revoked_grant_stops_reads_writes_and_pushes_and_clears_the_retained_state();
    void a_changed_password_ends_the_old_one();
    void a_removed_user_is_thrown_out_and_its_states_go();

 private:
    host_process_t host;
};

void tst_rights::initTestCase() {
    QVERIFY2(host.import(home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_rights::sign_in_needs_a_known_name_and_its_password_data() {
    QTest::addColumn<QString>("username");
    QTest::addColumn<QString>("password");
    QTest::newRow("anonymous") << ""
                               << "";
    QTest::newRow("wrong password") << "alice"
                                    << "bob-password";
    QTest::newRow("no password") << "alice"
                                 << "";
    QTest::newRow("unknown user") << "mallory"
                                  << "mallory-password";
    QTest::newRow("the host's own account") << "@torlan"
                                            << "";
}

void tst_rights::sign_in_needs_a_known_name_and_its_password() {
    QFETCH(QString, username);
    QFETCH(QString, password);
    mqtt_client_t client;
    QCOMPARE(client.sign_in(host.port(), username, password), not_authorized);
}

void tst_rights::a_user_may_publish_below_its_own_requests_only_data() {
    QTest::addColumn<QString>("topic");
    QTest::newRow("another user's request") << request_topic("alice", "get");
    QTest::newRow("own state") << state_topic("bob", "e-lamp");
    QTest::newRow("another user's state") << state_topic("alice", "e-lamp");
    QTest::newRow("own answers") << "local/api/v1/bob/me/status/get/elements/objects_list";
    QTest::newRow("another version") << "local/api/v2/bob/me/request/get/elements/objects_list";
    QTest::newRow("connection") << "local/installation/0001/connection";
    QTest::newRow("anything else") << "bob";
    QTest::newRow("broker") << "$SYS/broker/load";
}

void tst_rights::a_user_may_publish_below_its_own_requests_only() {
    QFETCH(QString, topic);
    mqtt_client_t bob;
    QVERIFY(join(bob, host, "bob"));
    QCOMPARE(bob.publish(topic, "{}"), not_authorized);
    QCOMPARE(bob.publish(topic, "{}", true), not_authorized);
}

void tst_rights::a_user_hears_its_own_tree_and_the_connection_only() {
    mqtt_client_t dave;
    QVERIFY(join(dave, host, "dave"));
    QVERIFY(dave.subscribe("#"));
    QVERIFY(dave.subscribe("local/api/v1/alice/#"));
    QVERIFY(dave.subscribe("local/api/v1/+/status/#"));
    QVERIFY(dave.subscribe("$share/g/local/api/v1/alice/#"));
    QVERIFY(dave.subscribe("$SYS/#"));
    mqtt_client_t alice;
    QVERIFY(join(alice, host, "alice"));
    alice.request(request_topic("alice", "set", "e-lamp"), write_payload("execute", 1));
    QVERIFY(alice.wait_for([](const mqtt_client_t::message_t& m) {
        return m.topic == state_topic("alice", "e-lamp") && value_in(m.json(), "execute") == "1";
    }));
    // Dave's own answer is published behind everything that alice heard.
    QCOMPARE(dave.request(request_topic("dave", "get"))["data"].toObject(), QJsonObject());
    for (const auto& message : dave.messages()) {
        QVERIFY2(message.topic.startsWith("local/api/v1/dave/") ||
                     message.topic == "local/installation/0001/connection",
                 qPrintable(message.topic));
    }
}

void tst_rights::a_grant_is_effective_at_once() {
    mqtt_client_t carol;
    QVERIFY(join(carol, host, "carol"));
    QCOMPARE(carol.request(request_topic("carol", "get", "e-lamp"))["error"], QJsonValue(401));
    QCOMPARE(host.control({"grant", "carol", "e-lamp", "readwrite"}), 0);
    QVERIFY(carol.wait_for(state_topic("carol", "e-lamp")));
    const QJsonObject answer =
        carol.request(request_topic("carol", "set", "e-lamp"), write_payload("dim", 66));
    QCOMPARE(answer["data"]["functions"]["dim"], QJsonValue("202"));
}

void tst_rights::a_revoked_grant_stops_reads_writes_and_pushes_and_clears_the_retained_state() {
    const QString topic = state_topic("erin", "e-lamp");
    mqtt_client_t alice;
    mqtt_client_t erin;
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(join(erin, host, "erin"));
    QVERIFY(erin.wait_for(topic));
    QCOMPARE(host.control({"grant", "erin", "e-lamp", "deny"}), 0);
    // The change is announced on the road that a live change of a value takes behind it.
    QTRY_COMPARE_WITH_TIMEOUT(erin.request(request_topic("erin", "get", "e-lamp"))["error"],
                              QJsonValue(401), 5000);
    // Not once the driver's debounce of 10 s is over: the host does it behind the driver.
    QVERIFY(erin.wait_for(
        [&topic](const mqtt_client_t::message_t& m) {
            return m.topic == topic && m.payload.isEmpty();
        },
        5000));
    erin.forget();
    alice.forget();
    QCOMPARE(erin.request(request_topic("erin", "set", "e-lamp"),
                          write_payload("dim", 1))["data"]["error"],
             QJsonValue(401));
    alice.request(request_topic("alice", "set", "e-lamp"), write_payload("dim", 77));
    QVERIFY(alice.wait_for([](const mqtt_client_t::message_t& m) {
        return m.topic == state_topic("alice", "e-lamp") && value_in(m.json(), "dim") == "77";
    }));
    erin.request(request_topic("erin", "get"));
    for (const auto& message : erin.messages()) {
        QVERIFY2(message.topic != topic || message.payload.isEmpty(), message.payload.constData());
    }
    mqtt_client_t later;
    QVERIFY(join(later, host, "erin"));
    later.request(request_topic("erin", "get"));
    for (const auto& message : later.messages()) {
        QVERIFY2(message.topic != topic, "a retained state is left");
    }
}

void tst_rights::a_changed_password_ends_the_old_one() {
    mqtt_client_t carol;
    QVERIFY(join(carol, host, "carol"));
    QSignalSpy thrown_out(&carol, &mqtt_client_t::disconnected);
    QCOMPARE(host.control({"user", "passwd", "carol"}, "new-password\n"), 0);
    QVERIFY(!thrown_out.isEmpty() || thrown_out.wait(10000));
    mqtt_client_t old_one;
    QCOMPARE(old_one.sign_in(host.port(), "carol", "carol-password"), not_authorized);
    mqtt_client_t new_one;
    QCOMPARE(new_one.sign_in(host.port(), "carol", "new-password"), 0);
}

void tst_rights::a_removed_user_is_thrown_out_and_its_states_go() {
    mqtt_client_t frank;
    QVERIFY(join(frank, host, "frank"));
    QVERIFY(frank.wait_for(state_topic("frank", "e-lamp")));
    QSignalSpy thrown_out(&frank, &mqtt_client_t::disconnected);
    QCOMPARE(host.control({"user", "remove", "frank"}), 0);
    QVERIFY(!thrown_out.isEmpty() || thrown_out.wait(10000));
    mqtt_client_t again;
    QCOMPARE(again.sign_in(host.port(), "frank", "frank-password"), not_authorized);
    // A new user of the same name must not find the old one's states.
    QCOMPARE(host.control({"user", "add", "frank"}, "frank-password\n"), 0);
    const auto joined = [this](mqtt_client_t& client) {
        return client.sign_in(host.port(), "frank", "frank-password") == 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(
        [&]() {
            mqtt_client_t heir;
            if (!joined(heir) || !heir.subscribe("local/api/v1/frank/#")) {
                return false;
            }
            heir.request(request_topic("frank", "get"));
            return std::none_of(heir.messages().cbegin(), heir.messages().cend(),
                                [](const auto& m) { return m.retained; });
        }(),
        30000);
}

QTEST_GUILESS_MAIN(tst_rights)
#include "tst_rights.moc"
