#include <QTest>

#include "endpoint/publisher_t.h"

using namespace comunication;

/// Before a connection that is not open: what reaches the sender counts as dropped there.
class tst_publisher_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_may_not_lie_on_the_broker_is_refused_data() {
        QTest::addColumn<QString>("topic");
        QTest::addColumn<QJsonValue>("payload");
        QTest::addColumn<bool>("retain");
        QTest::addColumn<bool>("sent");
        const auto row = [](const char* _name, const char* _topic, const QJsonValue& _payload,
                            bool _retain, bool _sent) {
            QTest::newRow(_name) << QString(_topic) << _payload << _retain << _sent;
        };
        const char* const state = "local/api/v1/alice/status/e-lamp";
        row("state", state, QJsonObject(), true, true);
        row("nothing to say", state, QJsonValue(QJsonValue::Undefined), true, false);
        row("state of an odd name", "local/api/v1/alice/status/e lamp", QJsonObject(), true, false);
        row("answer to an odd name", "local/api/v1/alice/me/status/get/e lamp", QJsonObject(),
            false, true);
        row("elsewhere", "any topic", QJsonObject(), true, true);
    }
    void what_may_not_lie_on_the_broker_is_refused() {
        QFETCH(QString, topic);
        QFETCH(QJsonValue, payload);
        QFETCH(bool, retain);
        QFETCH(bool, sent);
        const QJsonValue said =
            publisher.publish(topic, payload, utility::qos_t::exactly_once, retain);
        QCOMPARE(said.isUndefined(), !sent);
        QCOMPARE(counts.dropped_disconnected == 1, sent);
        QCOMPARE(counts.refused == 1, !sent);
    }

    void a_message_of_the_broker_s_limit_is_sent_and_one_above_is_not() {
        // Two bytes of topic, two of quotes, sixteen of the packet's own.
        publisher.publish("to", QString(80, 'x'), utility::qos_t::exactly_once, true);
        QCOMPARE(counts.too_large, quint64(0));
        QCOMPARE(counts.dropped_disconnected, quint64(1));
        publisher.publish("to", QString(81, 'x'), utility::qos_t::exactly_once, true);
        QCOMPARE(counts.too_large, quint64(1));
        QCOMPARE(counts.dropped_disconnected, quint64(1));
    }

    void what_is_sent_in_the_end_is_told() {
        const auto say = [this](const QString& _text) {
            return publisher.publish("to", QJsonObject{{"x", _text}}, utility::qos_t::exactly_once,
                                     false);
        };
        QCOMPARE(say("y"), QJsonValue(QJsonObject{{"x", "y"}}));
        QCOMPARE(say(QString(90, 'y')).toObject()["error"], QJsonValue(413));
    }

    void init() {
        for (auto* count : {&counts.refused, &counts.dropped_disconnected, &counts.too_large}) {
            *count = 0;
        }
    }

 private:
    endpoint_counters_t counts;
    mosquitto_client_t client;
    message_sender_t sender{client, counts, 100, 100'000, {}};
    publisher_t publisher{sender, counts, 100};
};

QTEST_GUILESS_MAIN(tst_publisher_t)
#include "tst_publisher_t.moc"
