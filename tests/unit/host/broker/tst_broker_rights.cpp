#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <QTest>

#include "unit/host/broker/mqtt_user_t.h"
#include "unit/host/broker/real_broker_t.h"

using comunication::outgoing_t;
using comunication::utility::qos_t;

namespace {

struct freed_t {
    void operator()(mosquitto* _handle) const { mosquitto_destroy(_handle); }
};

/// Publishes on @p _topic under a topic alias and then by the alias alone.
void publish_by_alias(quint16 _port, const char* _topic) {
    const std::unique_ptr<mosquitto, freed_t> client(mosquitto_new(nullptr, true, nullptr));
    mosquitto_int_option(client.get(), MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_username_pw_set(client.get(), "alice", "alice-pw");
    QCOMPARE(mosquitto_connect(client.get(), "127.0.0.1", _port, 10), int(MOSQ_ERR_SUCCESS));
    mosquitto_property* alias = nullptr;
    mosquitto_property_add_int16(&alias, MQTT_PROP_TOPIC_ALIAS, 1);
    for (const char* const topic : {_topic, static_cast<const char*>(nullptr)}) {
        for (int i = 0; i < 5; ++i) {
            mosquitto_loop(client.get(), 20, 1);
        }
        QCOMPARE(mosquitto_publish_v5(client.get(), nullptr, topic, 5, "alias", 0, false, alias),
                 int(MOSQ_ERR_SUCCESS));
    }
    mosquitto_property_free_all(&alias);
    for (int i = 0; i < 5; ++i) {
        mosquitto_loop(client.get(), 20, 1);
    }
}

}  // namespace

/// What an API user can and cannot do on the real broker.
class tst_broker_rights : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void own_request_is_permitted();
    void foreign_topic_cannot_be_written_data();
    void foreign_topic_cannot_be_written();
    void foreign_topic_cannot_be_read_data();
    void foreign_topic_cannot_be_read();
    void retained_foreign_topic_cannot_be_read();
    void connection_topic_can_be_read();
    void last_will_on_a_foreign_topic_is_refused();
    void topic_alias_does_not_get_around();
    void anonymous_is_refused();
    void host_account_needs_its_password();
    void megabyte_passes_and_more_than_the_limit_does_not();

 private:
    /// Everything that the host has seen up to now.
    QStringList seen_by_host();

    std::unique_ptr<real_broker_t> broker;
    std::unique_ptr<mqtt_user_t> host;
    std::unique_ptr<mqtt_user_t> alice;
};

void tst_broker_rights::init() {
    broker = std::make_unique<real_broker_t>();
    QCOMPARE(broker->start(), QString());
    host = std::make_unique<mqtt_user_t>();
    alice = std::make_unique<mqtt_user_t>();
    QVERIFY(host->enter(broker->settings.port, "@torlan", broker->process.host_password()));
    QVERIFY(host->subscribe("#"));
    QVERIFY(alice->enter(broker->settings.port, "alice", "alice-pw"));
}

void tst_broker_rights::cleanup() {
    alice.reset();
    host.reset();
    broker.reset();
}

QStringList tst_broker_rights::seen_by_host() {
    const QString fence = "local/api/v1/alice/phone/request/fence";
    alice->publish(fence, "{}");
    host->wait_for(fence);
    QStringList topics;
    for (const auto& message : host->messages) {
        topics.append(message.topic);
    }
    topics.removeAll(fence);
    return topics;
}

void tst_broker_rights::own_request_is_permitted() {
    QVERIFY(alice->publish("local/api/v1/alice/phone/request/x/y", "{}"));
    QCOMPARE(seen_by_host(), QStringList{"local/api/v1/alice/phone/request/x/y"});
    QCOMPARE(alice->accepted, alice->delivered);
}

void tst_broker_rights::foreign_topic_cannot_be_written_data() {
    QTest::addColumn<QString>("topic");
    for (const char* const topic :
         {"local/api/v1/bob/phone/request/x", "local/api/v1/alice/status/e-1",
          "local/api/v1/alice/phone/status/x", "local/api/v1/alice/request/x",
          "local/api/v2/alice/phone/request/x", "local/api/v1/alice/a/b/request/x",
          "home/1/connection", "other", "$SYS/x", "local/api/v1/alice"}) {
        QTest::newRow(topic) << topic;
    }
}

void tst_broker_rights::foreign_topic_cannot_be_written() {
    QFETCH(QString, topic);
    QVERIFY(host->subscribe("$SYS/#"));
    QVERIFY(alice->publish(topic, "{}"));
    QCOMPARE(alice->accepted, 0);
    QVERIFY(alice->publish(topic, "{}", true));
    QCOMPARE(seen_by_host(), QStringList());
}

void tst_broker_rights::foreign_topic_cannot_be_read_data() {
    QTest::addColumn<QString>("filter");
    for (const char* const filter : {"#", "+/#", "local/api/v1/bob/#", "local/api/v1/+/status/#",
                                     "$SYS/#", "$share/g/#", "$share/g/local/api/v1/bob/#"}) {
        QTest::newRow(filter) << filter;
    }
}

void tst_broker_rights::foreign_topic_cannot_be_read() {
    QFETCH(QString, filter);
    alice->subscribe(filter);
    QVERIFY(alice->subscribe("local/api/v1/alice/status/fence"));
    QVERIFY(host->publish("local/api/v1/bob/status/e-1", "{}"));
    QVERIFY(host->publish("local/api/v1/bob/phone/request/x", "{}"));
    QVERIFY(host->publish("other", "{}"));
    QVERIFY(host->publish("local/api/v1/alice/status/fence", "{}"));
    alice->wait_for("local/api/v1/alice/status/fence");
    for (const auto& message : alice->messages) {
        QCOMPARE(message.topic, QString("local/api/v1/alice/status/fence"));
    }
}

void tst_broker_rights::retained_foreign_topic_cannot_be_read() {
    QVERIFY(host->publish("local/api/v1/bob/status/e-1", "{}", true));
    QVERIFY(host->publish("local/api/v1/alice/status/e-1", "{}", true));
    QVERIFY(alice->subscribe("#"));
    alice->wait_for("local/api/v1/alice/status/e-1");
    QCOMPARE(alice->count("local/api/v1/bob/status/e-1"), 0);
}

void tst_broker_rights::connection_topic_can_be_read() {
    QVERIFY(host->publish("home/1/connection", "{}", true));
    QVERIFY(alice->subscribe("home/1/connection"));
    QCOMPARE(alice->wait_for("home/1/connection"), QByteArray("{}"));
}

void tst_broker_rights::last_will_on_a_foreign_topic_is_refused() {
    const outgoing_t will{"local/api/v1/bob/phone/request/x", "{}", qos_t::exactly_once, true};
    auto evil = std::make_unique<mqtt_user_t>();
    if (evil->enter(broker->settings.port, "alice", "alice-pw", will)) {
        evil.reset();  // without a word: the will is due
    }
    QCOMPARE(seen_by_host(), QStringList());
}

void tst_broker_rights::topic_alias_does_not_get_around() {
    publish_by_alias(broker->settings.port, "local/api/v1/bob/phone/request/x");
    QCOMPARE(seen_by_host(), QStringList());
    publish_by_alias(broker->settings.port, "local/api/v1/alice/phone/request/x");
    QCOMPARE(seen_by_host().size(), 2);  // the test's own means work
}

void tst_broker_rights::anonymous_is_refused() {
    mqtt_user_t nobody;
    QVERIFY(!nobody.enter(broker->settings.port, {}, {}));
    QVERIFY(nobody.refused);
}

void tst_broker_rights::host_account_needs_its_password() {
    mqtt_user_t other;
    QVERIFY(!other.enter(broker->settings.port, "@torlan", "alice-pw"));
}

void tst_broker_rights::megabyte_passes_and_more_than_the_limit_does_not() {
    QVERIFY(alice->publish("local/api/v1/alice/phone/request/x", QByteArray(1 << 20, 'x')));
    QCOMPARE(host->wait_for("local/api/v1/alice/phone/request/x").size(), qsizetype(1 << 20));
    QCOMPARE(
        alice->client.publish({"local/api/v1/alice/phone/request/y", QByteArray(5 << 20, 'x')}), 0);
}

QTEST_GUILESS_MAIN(tst_broker_rights)
#include "tst_broker_rights.moc"
