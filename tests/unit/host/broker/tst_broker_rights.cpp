#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <QTest>

#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"

using namespace kit;

namespace {

constexpr int not_authorized = MQTT_RC_NOT_AUTHORIZED;

struct freed_t {
    void operator()(mosquitto* _handle) const { mosquitto_destroy(_handle); }
};

/// Publishes on @p _topic under a topic alias and then by the alias alone.
void publish_by_alias(quint16 _port, const char* _topic) {
    const std::unique_ptr<mosquitto, freed_t> client(mosquitto_new(nullptr, true, nullptr));
    mosquitto_int_option(client.get(), MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_username_pw_set(client.get(), "alice", "alice-password");
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
    std::unique_ptr<mqtt_client_t> host;
    std::unique_ptr<mqtt_client_t> alice;
};

void tst_broker_rights::init() {
    broker = std::make_unique<real_broker_t>();
    QCOMPARE(broker->start(), QString());
    host = std::make_unique<mqtt_client_t>();
    alice = std::make_unique<mqtt_client_t>();
    QCOMPARE(broker->let_host_in(host.get()), 0);
    QVERIFY(host->subscribe("#"));
    QCOMPARE(alice->sign_in(broker->settings.port, "alice", "alice-password"), 0);
}

void tst_broker_rights::cleanup() {
    alice.reset();
    host.reset();
    broker.reset();
}

QStringList tst_broker_rights::seen_by_host() {
    const QString fence = "local/api/v1/alice/phone/request/fence";
    alice->publish(fence, "{}");
    host->heard(fence);
    QStringList topics;
    for (const auto& message : host->messages()) {
        topics.append(message.topic);
    }
    topics.removeAll(fence);
    return topics;
}

void tst_broker_rights::own_request_is_permitted() {
    QCOMPARE(alice->publish("local/api/v1/alice/phone/request/x/y", "{}"), 0);
    QCOMPARE(seen_by_host(), QStringList{"local/api/v1/alice/phone/request/x/y"});
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
    QCOMPARE(alice->publish(topic, "{}"), not_authorized);
    QCOMPARE(alice->publish(topic, "{}", true), not_authorized);
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
    QCOMPARE(host->publish("local/api/v1/bob/status/e-1", "{}"), 0);
    QCOMPARE(host->publish("local/api/v1/bob/phone/request/x", "{}"), 0);
    QCOMPARE(host->publish("other", "{}"), 0);
    QCOMPARE(host->publish("local/api/v1/alice/status/fence", "{}"), 0);
    alice->heard("local/api/v1/alice/status/fence");
    for (const auto& message : alice->messages()) {
        QCOMPARE(message.topic, QString("local/api/v1/alice/status/fence"));
    }
}

void tst_broker_rights::retained_foreign_topic_cannot_be_read() {
    QCOMPARE(host->publish("local/api/v1/bob/status/e-1", "{}", true), 0);
    QCOMPARE(host->publish("local/api/v1/alice/status/e-1", "{}", true), 0);
    QVERIFY(alice->subscribe("#"));
    alice->heard("local/api/v1/alice/status/e-1");
    QCOMPARE(alice->count("local/api/v1/bob/status/e-1"), 0);
}

void tst_broker_rights::connection_topic_can_be_read() {
    QCOMPARE(host->publish("home/1/connection", "{}", true), 0);
    QVERIFY(alice->subscribe("home/1/connection"));
    QCOMPARE(alice->heard("home/1/connection"), QByteArray("{}"));
}

void tst_broker_rights::last_will_on_a_foreign_topic_is_refused() {
    mqtt_client_t evil;
    evil.sign_in(broker->settings.port, "alice", "alice-password",
                 {"local/api/v1/bob/phone/request/x", "{}"});
    evil.drop();  // without a word: the will is due
    QCOMPARE(seen_by_host(), QStringList());
}

void tst_broker_rights::topic_alias_does_not_get_around() {
    publish_by_alias(broker->settings.port, "local/api/v1/bob/phone/request/x");
    QCOMPARE(seen_by_host(), QStringList());
    publish_by_alias(broker->settings.port, "local/api/v1/alice/phone/request/x");
    QCOMPARE(seen_by_host().size(), 2);  // the test's own means work
}

void tst_broker_rights::anonymous_is_refused() {
    mqtt_client_t nobody;
    QCOMPARE(nobody.sign_in(broker->settings.port, {}, {}), not_authorized);
}

void tst_broker_rights::host_account_needs_its_password() {
    mqtt_client_t other;
    QCOMPARE(other.sign_in(broker->settings.port, "@torlan", "alice-password"), not_authorized);
}

void tst_broker_rights::megabyte_passes_and_more_than_the_limit_does_not() {
    QCOMPARE(alice->publish("local/api/v1/alice/phone/request/x", QByteArray(1 << 20, 'x')), 0);
    QCOMPARE(host->heard("local/api/v1/alice/phone/request/x").size(), qsizetype(1 << 20));
    QCOMPARE(alice->publish("local/api/v1/alice/phone/request/y", QByteArray(5 << 20, 'x')),
             -int(MOSQ_ERR_OVERSIZE_PACKET));
}

QTEST_GUILESS_MAIN(tst_broker_rights)
#include "tst_broker_rights.moc"
