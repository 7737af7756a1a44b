#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace kit;

using way_t = raw_mqtt_t::way_t;
Q_DECLARE_METATYPE(raw_mqtt_t::way_t)

namespace {

constexpr int refused = 0x87;
const QByteArray fence_topic = "local/api/v1/alice/phone/request/fence";
const QByteArray own_fence = "local/api/v1/alice/status/fence";

/// Rows that every test here runs with.
void add_ways() {
    QTest::addColumn<way_t>("way");
    QTest::addColumn<int>("version");
    QTest::newRow("3.1 tcp") << way_t::tcp << 3;
    QTest::newRow("3.1.1 tcp") << way_t::tcp << 4;
    QTest::newRow("5 tcp") << way_t::tcp << 5;
    QTest::newRow("3.1.1 websockets") << way_t::websockets << 4;
    QTest::newRow("5 websockets") << way_t::websockets << 5;
}

const QByteArrayList foreign_topics{"local/api/v1/bob/phone/request/x",
                                    "local/api/v1/alice/status/e-1",
                                    "local/api/v1/alice/phone/status/x",
                                    "local/api/v1/alice/request/x",
                                    "local/api/v2/alice/phone/request/x",
                                    "local/api/v1/alice/a/b/request/x",
                                    "home/1/connection",
                                    "other",
                                    "$SYS/x",
                                    "$SYS/broker/connection/x/state",
                                    "$CONTROL/torlan/v1",
                                    "$CONTROL/torlan/v1/report",
                                    "$share/g/x",
                                    "local/api/v1/alice"};

const QByteArrayList foreign_filters{"#",
                                     "+/#",
                                     "+",
                                     "local/#",
                                     "local/api/v1/#",
                                     "local/api/v1/bob/#",
                                     "local/api/v1/+/status/#",
                                     "local/api/+/alice/#",
                                     "home/#",
                                     "home/+/connection",
                                     "$SYS/#",
                                     "$CONTROL/#",
                                     "$CONTROL/torlan/v1/report",
                                     "$share/g/#",
                                     "$share/g/local/api/v1/bob/#",
                                     "$share/g/$SYS/#",
                                     "$share/g/local/api/v1/+/#",
                                     "$share/g/home/1/connection"};

}  // namespace

/// What a user can and cannot do on the real broker with the plugin.
class tst_plugin_rights : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void own_request_is_permitted_data() { add_ways(); }
    void own_request_is_permitted();
    void foreign_topic_cannot_be_written_data() { add_ways(); }
    void foreign_topic_cannot_be_written();
    void foreign_filter_is_refused_and_delivers_nothing_data() { add_ways(); }
    void foreign_filter_is_refused_and_delivers_nothing();
    void own_tree_and_connection_topic_can_be_read_data() { add_ways(); }
    void own_tree_and_connection_topic_can_be_read();
    void retained_request_is_refused_data() { add_ways(); }
    void retained_request_is_refused();
    void last_will_has_to_be_an_own_request_data();
    void last_will_has_to_be_an_own_request();
    void stranger_in_the_same_share_takes_nothing_away();
    void host_reads_and_writes_everything();

 private:
    /// What the host has got up to now, by topic.
    QByteArrayList seen_by_host();

    std::unique_ptr<plugin_broker_t> broker;
    std::unique_ptr<raw_mqtt_t> fence;
};

void tst_plugin_rights::init() {
    broker = std::make_unique<plugin_broker_t>("plugin_opt_at_once_ms 1000");
    QVERIFY(broker->connect_host());
    QCOMPARE(broker->tell_both(), "done 1");
    QCOMPARE(broker->host->subscribe("#"), 1);
    QCOMPARE(broker->host->subscribe("$SYS/#"), 1);
    fence = broker->enter({.name = "alice", .id = "fence"});
}

void tst_plugin_rights::cleanup() {
    fence.reset();
    QVERIFY(broker->is_running());
    broker.reset();
}

QByteArrayList tst_plugin_rights::seen_by_host() {
    fence->publish(fence_topic, "fence");
    broker->host->payloads_until(fence_topic, "fence");
    QByteArrayList topics;
    for (const raw_message_t& message : broker->host->received()) {
        if (message.topic != fence_topic && !message.topic.startsWith("$CONTROL/")) {
            topics.append(message.topic);
        }
    }
    return topics;
}

void tst_plugin_rights::own_request_is_permitted() {
    QFETCH(way_t, way);
    QFETCH(int, version);
    const auto alice = broker->enter({.name = "alice", .version = version}, nullptr, way);
    for (const int qos : {0, 1, 2}) {
        const QByteArray topic = "local/api/v1/alice/phone/request/q" + QByteArray::number(qos);
        QCOMPARE(alice->publish(topic, "{}", qos), 0);
        QVERIFY(alice->is_alive());
        QCOMPARE(seen_by_host().last(), topic);
    }
}

void tst_plugin_rights::foreign_topic_cannot_be_written() {
    QFETCH(way_t, way);
    QFETCH(int, version);
    const auto alice = broker->enter({.name = "alice", .version = version}, nullptr, way);
    for (const QByteArray& topic : foreign_topics) {
        for (const int qos : {0, 1, 2}) {
            for (const bool retain : {false, true}) {
                const int code = alice->publish(topic, "x", qos, retain);
                QCOMPARE(code, version == 5 && qos > 0 ? refused : 0);
            }
        }
    }
    QVERIFY(alice->is_alive());
    QCOMPARE(seen_by_host(), QByteArrayList());
}

void tst_plugin_rights::foreign_filter_is_refused_and_delivers_nothing() {
    QFETCH(way_t, way);
    QFETCH(int, version);
    // One is there before, the other comes after the subscription.
    broker->host->publish("local/api/v1/bob/status/e-1", "before", 1, true);
    const auto alice = broker->enter({.name = "alice", .version = version}, nullptr, way);
    for (const QByteArray& filter : foreign_filters) {
        const int code = alice->subscribe(filter, 2);
        // MQTT 3.1 has no word for a refusal.
        QCOMPARE(code, version == 5 ? refused : version == 4 ? 0x80 : 2);
    }
    QVERIFY(alice->subscribe(own_fence) < 2);
    for (const char* const topic :
         {"local/api/v1/bob/status/e-1", "local/api/v1/bob/phone/request/x",
          "local/api/v1/alice/status/e-1", "home/1/connection", "home/1/x", "other"}) {
        broker->host->publish(topic, "x");
    }
    broker->host->publish(own_fence, "fence");
    alice->payloads_until(own_fence, "fence");
    QCOMPARE(alice->received().size(), 1);
}

void tst_plugin_rights::own_tree_and_connection_topic_can_be_read() {
    QFETCH(way_t, way);
    QFETCH(int, version);
    broker->host->publish("home/1/connection", "online", 1, true);
    broker->host->publish("local/api/v1/alice/status/e-1", "state", 1, true);
    const auto alice = broker->enter({.name = "alice", .version = version}, nullptr, way);
    QCOMPARE(alice->subscribe("local/api/v1/alice/#"), 1);
    QCOMPARE(alice->subscribe("home/1/connection"), 1);
    broker->host->publish(own_fence, "fence");
    alice->payloads_until(own_fence, "fence");
    const auto all = alice->received();
    QCOMPARE(all.size(), 3);
    QVERIFY(all[0].retain && all[0].payload == "state");
    QVERIFY(all[1].retain && all[1].payload == "online");
}

void tst_plugin_rights::retained_request_is_refused() {
    QFETCH(way_t, way);
    QFETCH(int, version);
    const auto alice = broker->enter({.name = "alice", .version = version}, nullptr, way);
    const QByteArray topic = "local/api/v1/alice/phone/request/x";
    for (const QByteArray& payload : {QByteArray("{}"), QByteArray()}) {
        for (const int qos : {0, 1, 2}) {
            QCOMPARE(alice->publish(topic, payload, qos, true),
                     version == 5 && qos > 0 ? refused : 0);
        }
    }
    QCOMPARE(seen_by_host(), QByteArrayList());
    const auto other = broker->enter({.name = "alice", .id = "other"});
    other->subscribe("local/api/v1/alice/#");
    QVERIFY(other->received().isEmpty());
}

void tst_plugin_rights::last_will_has_to_be_an_own_request_data() {
    QTest::addColumn<QByteArray>("topic");
    QTest::addColumn<bool>("retain");
    QTest::addColumn<int>("version");
    QTest::addColumn<way_t>("way");
    QTest::addColumn<bool>("sent");
    const auto row = [](const char* _name, const QByteArray& _topic, bool _retain, bool _sent) {
        for (const int version : {3, 4, 5}) {
            for (const way_t way : {way_t::tcp, way_t::websockets}) {
                QTest::addRow("%s, %d, %d", _name, version, int(way))
                    << _topic << _retain << version << way << _sent;
            }
        }
    };
    row("own request", "local/api/v1/alice/phone/request/x", false, true);
    row("own request, retained", "local/api/v1/alice/phone/request/x", true, false);
    row("own status", "local/api/v1/alice/status/x", false, false);
    row("foreign request", "local/api/v1/bob/phone/request/x", false, false);
    row("connection topic", "home/1/connection", true, false);
}

void tst_plugin_rights::last_will_has_to_be_an_own_request() {
    QFETCH(QByteArray, topic);
    QFETCH(bool, retain);
    QFETCH(int, version);
    QFETCH(way_t, way);
    QFETCH(bool, sent);
    int code = 0;
    const auto alice = broker->enter({.name = "alice",
                                      .id = "gone",
                                      .version = version,
                                      .will = {.topic = topic, .retain = retain}},
                                     &code, way);
    QCOMPARE(code, 0);
    alice->vanish();
    broker->reports_until("departed 1 ");
    QCOMPARE(seen_by_host(), sent ? QByteArrayList{topic} : QByteArrayList());
}

void tst_plugin_rights::stranger_in_the_same_share_takes_nothing_away() {
    const auto alice = broker->enter({.name = "alice", .id = "a"});
    QCOMPARE(alice->subscribe("$share/g/local/api/v1/alice/#"), 1);
    const auto bob = broker->enter({.name = "bob", .id = "b"});
    QCOMPARE(bob->subscribe("$share/g/local/api/v1/alice/#"), refused);
    for (int i = 0; i < 50; ++i) {
        broker->host->publish("local/api/v1/alice/status/e", QByteArray::number(i));
    }
    broker->host->publish("local/api/v1/alice/status/e", "fence");
    QCOMPARE(alice->payloads_until("local/api/v1/alice/status/e", "fence").size(), 50);
}

void tst_plugin_rights::host_reads_and_writes_everything() {
    QCOMPARE(broker->host->publish("any/topic", "x", 2, true), 0);
    QCOMPARE(broker->host->payloads_until("any/topic", "x"), QList<QByteArray>());
}

QTEST_GUILESS_MAIN(tst_plugin_rights)
#include "tst_plugin_rights.moc"
