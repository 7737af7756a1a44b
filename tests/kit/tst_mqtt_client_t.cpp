#include "kit/mqtt_client_t.h"

#include <mqtt_protocol.h>
#include <signal.h>

#include <QSignalSpy>
#include <QTest>

#include "kit/real_broker_t.h"

using kit::mqtt_client_t;

/// What other tests rely on: that it hears, tells a refusal apart and goes without a word.
class tst_mqtt_client_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { QCOMPARE(broker.start(), QString()); }

    void a_refusal_is_told_by_its_reason() {
        mqtt_client_t client;
        QCOMPARE(client.sign_in(port(), "alice", "wrong"), int(MQTT_RC_NOT_AUTHORIZED));
        QVERIFY(!client.is_connected());
        QVERIFY(enter(&client, "alice"));
        QCOMPARE(client.publish("local/api/v1/bob/me/request/x", "{}"),
                 int(MQTT_RC_NOT_AUTHORIZED));
        QCOMPARE(client.publish("local/api/v1/alice/me/request/x", "{}"), 0);
    }

    void nobody_at_the_port_is_told_at_once() {
        mqtt_client_t client;
        QCOMPARE(client.sign_in(kit::free_port(), "alice", "x"), -1);
        QVERIFY(!client.subscribe("x"));
        QVERIFY(client.publish("x", "{}") < 0);
    }

    void a_dropped_client_leaves_its_will_and_another_hears_it() {
        const QString topic = "local/api/v1/alice/me/request/will";
        mqtt_client_t hears;
        QVERIFY(enter(&hears, "alice") && hears.subscribe("local/api/v1/alice/#"));
        mqtt_client_t leaves;
        QCOMPARE(leaves.sign_in(port(), "alice", kit::password_of("alice"), {topic, "gone"}), 0);
        leaves.drop();
        QCOMPARE(hears.heard(topic), QByteArray("gone"));
        QCOMPARE(hears.count(topic), 1);
    }

    void a_client_that_says_good_bye_leaves_no_will() {
        const QString topic = "local/api/v1/alice/me/request/none";
        mqtt_client_t hears;
        QVERIFY(enter(&hears, "alice") && hears.subscribe("local/api/v1/alice/#"));
        {
            mqtt_client_t leaves;
            QCOMPARE(leaves.sign_in(port(), "alice", kit::password_of("alice"), {topic, "gone"}),
                     0);
        }
        QCOMPARE(hears.publish("local/api/v1/alice/me/request/fence", "{}"), 0);
        QCOMPARE(hears.heard("local/api/v1/alice/me/request/fence"), QByteArray("{}"));
        QCOMPARE(hears.count(topic), 0);
    }

    void a_lost_broker_is_noticed() {
        mqtt_client_t client;
        QVERIFY(enter(&client, "bob"));
        QSignalSpy ended(&client, &mqtt_client_t::disconnected);
        ::kill(pid_t(broker.process.process_id()), SIGKILL);
        QVERIFY(ended.wait());
        QVERIFY(!client.is_connected());
        QTRY_VERIFY(enter(&client, "bob"));
    }

 private:
    quint16 port() const { return broker.settings.port; }
    bool enter(mqtt_client_t* _client, const QString& _name) const {
        return _client->sign_in(port(), _name, kit::password_of(_name)) == 0;
    }

    kit::real_broker_t broker;
};

QTEST_GUILESS_MAIN(tst_mqtt_client_t)
#include "tst_mqtt_client_t.moc"
