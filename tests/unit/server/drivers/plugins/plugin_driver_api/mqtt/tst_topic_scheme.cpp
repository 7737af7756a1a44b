#include "drivers/plugins/plugin_driver_api/mqtt/topic_scheme.h"

#include <QTest>

using comunication::utility::topic_publish_t;
using comunication::utility::topic_subscribe_t;
namespace topics = interfaces::topics;

namespace {

QStringList texts(const QList<topic_subscribe_t>& _list) {
    QStringList lines;
    for (const topic_subscribe_t& entry : _list) {
        lines.append(entry.topic + QLatin1Char(' ') + entry.bridges.join(QLatin1Char(',')));
    }
    return lines;
}

}  // namespace

class tst_topic_scheme : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void constants_data() {
        QTest::addColumn<QString>("constant");
        QTest::addColumn<QString>("expected");
        const QString b = QStringLiteral("local/@installation_id/@sender/@destination");
        const auto row = [](const QString& constant, const QString& expected) {
            QTest::newRow(qPrintable(expected)) << constant << expected;
        };
        const std::pair<QString, const char*> words[] = {
            {topics::destination, "@destination"},
            {topics::sender, "@sender"},
            {topics::clientid, "@clientid"},
            {topics::installation_id, "@installation_id"},
            {topics::username, "@username"},
            {topics::bridgekey, "@bridgekey"},
            {topics::version_brand_device, "@version_brand_device"},
            {topics::capability, "@capability"},
            {topics::operation, "@operation"},
            {topics::forward_bridge, "forward-bridge"},
            {topics::cloud_bridge, "cloud-bridge"},
            {topics::local, "local"},
            {topics::persistent, "persistent"},
            {topics::realtime, "realtime"},
            {topics::presencesimulation, "presencesimulation"},
            {topics::command_word, "command"},
            {topics::db_prefix, "DB/"},
            {topics::rr_request, "rr_request"},
            {topics::rr_response, "rr_response"},
            {topics::pairing, "pairing"},
            {topics::api, "api"},
            {topics::mqtt_to_knx_tun, "mqtt_to_knx_tun"},
            {topics::sys, "$SYS"},
            {topics::brand_device, "brand_device"},
            {topics::channel_alternatives, "realtime|persistent|presencesimulation|command"},
            {topics::correlation_alternatives, "rr_response|rr_request"},
            {topics::bridge_alternatives, "forward-bridge|cloud-bridge"},
            {topics::pairing_root, "local/@sender/pairing"},
            {topics::pairing_response, "local/@sender/pairing/response"},
            {topics::pairing_request, "local/@sender/pairing/request"},
            {topics::api_wildcard, "local/api/+/+"},
            {topics::api_request_wildcard, "local/api/+/+/+/request"},
            {topics::api_status_wildcard, "local/api/+/+/status"},
            {topics::broker_connection, "$SYS/broker/connection/#"},
            {topics::broker_connection_state, "$SYS/broker/connection/@bridgekey/state"},
            {topics::broker_client_connected, "$SYS/brokers/+/clients/@bridgekey/connected"},
            {topics::broker_client_disconnected, "$SYS/brokers/+/clients/@bridgekey/disconnected"},
        };
        for (const auto& [constant, expected] : words) {
            row(constant, QString::fromLatin1(expected));
        }
        row(topics::base, b);
        row(topics::connection, b + QStringLiteral("/connection"));
        row(topics::status, b + QStringLiteral("/status"));
        row(topics::request, b + QStringLiteral("/request"));
        row(topics::response_correlation, b + QStringLiteral("/rr_response"));
        row(topics::request_correlation, b + QStringLiteral("/rr_request"));
        row(topics::notification, b + QStringLiteral("/notification"));
        row(topics::command, b + QStringLiteral("/command"));
        row(topics::client_ready, b + QStringLiteral("/command/client/ready"));
        row(topics::presentation, b + QStringLiteral("/connection/presentation"));
    }
    void constants() {
        QFETCH(QString, constant);
        QFETCH(QString, expected);
        QCOMPARE(constant, expected);
    }

    void channels() {
        const QStringList channels{QStringLiteral("DB/persistent"), QStringLiteral("DB/realtime"),
                                   QStringLiteral("DB/presencesimulation"),
                                   QStringLiteral("DB/command")};
        QCOMPARE(topics::database_channels, channels);
        for (qsizetype i = 0; i < channels.size(); ++i) {
            QCOMPARE(topics::status_channels.value(i),
                     topics::base + QStringLiteral("/status/") + channels.at(i));
            QCOMPARE(topics::request_channels.value(i),
                     topics::base + QStringLiteral("/request/") + channels.at(i));
        }
        QCOMPARE(topics::status_channels.size(), 4);
        QCOMPARE(topics::request_channels.size(), 4);
    }

    void capability_topics_begin_at_the_devices_and_keep_their_ends() {
        const QString root = QStringLiteral("local/brand_device/@version_brand_device");
        const QString device = root + QStringLiteral("/@clientid");
        QCOMPARE(topics::capability_status,
                 device + QStringLiteral("/status/capability/@capability"));
        QCOMPARE(topics::capability_status_wildcard,
                 root + QStringLiteral("/+/status/capability/#"));
        QCOMPARE(topics::capability_request,
                 device + QStringLiteral("/request/capability/@operation/@capability"));
        QCOMPARE(topics::capability_request_all,
                 root + QStringLiteral("/all/request/capability/read/@capability"));
        QCOMPARE(topics::capability_request_wildcard,
                 device + QStringLiteral("/request/capability/+/+"));
        QVERIFY(topics::capability_request_all_wildcard.startsWith(root));
        QVERIFY(topics::capability_request_all_wildcard.endsWith(
            QStringLiteral("/request/capability/read/+")));
    }

    void subscriptions_append_a_subtree_only_where_they_name_one() {
        const QString b = topics::base;
        const QString both = QStringLiteral(" forward-bridge,cloud-bridge");
        const QString shared = texts(topics::subscribe_default).constLast();
        QVERIFY(shared.startsWith(b + QStringLiteral("/@")));
        QVERIFY(shared.section(QLatin1Char(' '), 0, 0).endsWith(QStringLiteral("/#")));
        QCOMPARE(texts(topics::subscribe_client_events),
                 (QStringList{topics::broker_client_connected + QLatin1Char(' '),
                              topics::broker_client_disconnected + QLatin1Char(' ')}));
        QCOMPARE(texts(topics::subscribe_default),
                 (QStringList{QStringLiteral("$SYS/broker/connection/# "),
                              b + QStringLiteral("/request/#") + both,
                              b + QStringLiteral("/command/client/ready") + both,
                              topics::capability_status_wildcard + QLatin1Char(' '), shared}));
        QVERIFY(topics::subscribe_none.isEmpty());
        QCOMPARE(texts(topics::subscribe_capability_requests),
                 (QStringList{topics::capability_request_wildcard + QLatin1Char(' '),
                              topics::capability_request_all_wildcard + QLatin1Char(' ')}));
        QCOMPARE(texts(topics::subscribe_command),
                 (QStringList{b + QStringLiteral("/notification/#") + both,
                              b + QStringLiteral("/status/#") + both, shared}));
    }

    void every_subscription_is_exactly_once() {
        for (const auto& list :
             {topics::subscribe_client_events, topics::subscribe_default,
              topics::subscribe_capability_requests, topics::subscribe_command}) {
            for (const topic_subscribe_t& entry : list) {
                QCOMPARE(static_cast<int>(entry.qos), 2);
            }
        }
    }

    void publications_data() {
        QTest::addColumn<QString>("topic");
        QTest::addColumn<QString>("bridge");
        QTest::addColumn<QString>("expected_topic");
        QTest::addColumn<QString>("expected_bridge");
        const auto row = [](const char* name, const topic_publish_t& made, const QString& topic,
                            const char* bridge) {
            QTest::newRow(name) << made.topic << made.bridge << topic
                                << QString::fromLatin1(bridge);
            QCOMPARE(static_cast<int>(made.qos), 2);
            QVERIFY(!made.retain);
        };
        row("client ready", topics::publish_client_ready, topics::client_ready, "forward-bridge");
        row("presentation", topics::publish_presentation, topics::presentation, "forward-bridge");
        row("status", topics::publish_capability_status, topics::capability_status, "");
        row("request", topics::publish_capability_request, topics::capability_request, "");
    }
    void publications() {
        QFETCH(QString, topic);
        QFETCH(QString, bridge);
        QTEST(topic, "expected_topic");
        QTEST(bridge, "expected_bridge");
    }
};

QTEST_GUILESS_MAIN(tst_topic_scheme)
#include "tst_topic_scheme.moc"
