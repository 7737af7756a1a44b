#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>

#include "fakes/recording_logger_t.h"

namespace {

const QString source =
    QStringLiteral("server/drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_base_t");

/// A version whose packets name the call that made them.
class probe_t : public interfaces::mqtt_server_api_base_t {
 public:
    probe_t() : mqtt_server_api_base_t(QStringLiteral("v7"), nullptr, nullptr) {}

    QJsonObject packet_error(QJsonObject request, const int&, QString) override { return request; }
    packets_t packet_update(const QString& id, const QStringList& changed) override {
        return packet(id + QLatin1Char('|') + changed.join(QLatin1Char(',')));
    }
    packets_t packet_update(const QStringList&) override { return packet(QStringLiteral("list")); }
    packets_t packet_update(const QString& id) override {
        return packet(QStringLiteral("all ") + id);
    }
    packets_t packet_update(const QString& user, const QString& id) override {
        return packet(user + QLatin1Char('+') + id);
    }
    void init_no_route_path() override { note("fallback"); }
    void init_route_path() override { note("routes"); }
    bool handlerMessageRetained(const QString&, const QString&, const QJsonObject&) override {
        return true;
    }
    QString topic_update_element(const QString&, const QString&) override { return {}; }
    void populate_acl(acl_t) override {}

    void note(const char* _what) {
        calls.append(QString::fromLatin1(_what) +
                     (getEnable() ? QStringLiteral(" on") : QString()));
    }
    packets_t packet(const QString& _what) {
        packets_t packets{{_what + QStringLiteral("/1"), {{QStringLiteral("n"), 1}}}};
        if (two_packets) {
            packets.insert(_what + QStringLiteral("/2"), {{QStringLiteral("n"), 2}});
        }
        return packets;
    }

    using mqtt_server_api_base_t::api_root;
    using mqtt_server_api_base_t::router;
    using mqtt_server_api_base_t::version_word;

    QStringList calls;
    bool two_packets = false;
};

QJsonObject object(const char* _text) {
    return QJsonDocument::fromJson(_text).object();
}

}  // namespace

class tst_mqtt_server_api_base_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void it_is_created_disabled_under_its_version() {
        const probe_t handler;
        QVERIFY(!handler.getEnable());
        QCOMPARE(handler.api_root, QStringLiteral("local/api/v7"));
        QCOMPARE(handler.version_word, QStringLiteral("v7"));
        QCOMPARE(handler.router.parent(), nullptr);
    }

    void enabling_stores_and_announces_every_time() {
        probe_t handler;
        QSignalSpy spy(&handler, &probe_t::enable_change);
        handler.setEnable(true);
        QVERIFY(handler.getEnable());
        handler.setEnable(true);
        handler.setEnable(false);
        QVERIFY(!handler.getEnable());
        const QString v7 = QStringLiteral("v7");
        QCOMPARE(spy, (QList<QList<QVariant>>{{v7, true}, {v7, true}, {v7, false}}));
    }

    void routes_are_set_after_the_flag_fallback_first() {
        probe_t handler;
        connect(&handler, &probe_t::enable_change, &handler,
                [&handler] { handler.note("announced"); });
        handler.init_route(true);
        handler.init_route(false);
        QCOMPARE(handler.calls,
                 (QStringList{QStringLiteral("announced on"), QStringLiteral("fallback on"),
                              QStringLiteral("routes on"), QStringLiteral("announced"),
                              QStringLiteral("fallback"), QStringLiteral("routes")}));
    }

    void a_request_reaches_the_router_with_its_payload_and_no_headers() {
        probe_t handler;
        QString topic;
        QVariant payload;
        QStringList captures;
        bool headers = true;
        handler.router.route(
            QStringLiteral("^a/(.+)$"),
            [&](const QString& _topic, const QVariant& _payload, const QStringList& _captures,
                const QMap<QString, QVariant>& _headers) {
                topic = _topic;
                payload = _payload;
                captures = _captures;
                headers = !_headers.isEmpty();
                return QJsonValue();
            },
            mqtt::PRIORITY_ROUTE::NORMAL);
        handler.handlerMessage(QStringLiteral("alice"), QStringLiteral("a/b"),
                               object(R"({"x":1})"));
        QCOMPARE(topic, QStringLiteral("a/b"));
        QCOMPARE(payload.typeId(), static_cast<int>(QMetaType::QJsonObject));
        QCOMPARE(payload.toJsonObject(), object(R"({"x":1})"));
        QCOMPARE(captures, (QStringList{QStringLiteral("a/b"), QStringLiteral("b")}));
        QVERIFY(!headers);
    }

    void only_a_filled_object_is_answered_data() {
        QTest::addColumn<QJsonValue>("result");
        QTest::addColumn<int>("answers");
        QTest::newRow("object") << QJsonValue(object(R"({"a":1})")) << 1;
        QTest::newRow("empty object") << QJsonValue(QJsonObject()) << 0;
        QTest::newRow("null") << QJsonValue() << 0;
        QTest::newRow("undefined") << QJsonValue(QJsonValue::Undefined) << 0;
        QTest::newRow("array") << QJsonValue(QJsonArray{1}) << 0;
        QTest::newRow("text") << QJsonValue(QStringLiteral("{\"a\":1}")) << 0;
        QTest::newRow("number") << QJsonValue(1) << 0;
        QTest::newRow("true") << QJsonValue(true) << 0;
    }
    void only_a_filled_object_is_answered() {
        QFETCH(QJsonValue, result);
        QFETCH(int, answers);
        probe_t handler;
        QSignalSpy spy(&handler, &probe_t::publish_message);
        handler.router.no_route([&result](const QString&, const QVariant&, const QStringList&,
                                          const QMap<QString, QVariant>&) { return result; });
        handler.handlerMessage(QStringLiteral("alice"), QStringLiteral("t"), {});
        QCOMPARE(spy.size(), answers);
    }

    void without_a_route_and_a_fallback_nothing_is_answered() {
        probe_t handler;
        QSignalSpy spy(&handler, &probe_t::publish_message);
        handler.handlerMessage(QStringLiteral("alice"), QStringLiteral("t"), {});
        QVERIFY(spy.isEmpty());
    }

    void response_data() {
        for (const char* name : {"topic", "request", "body", "expected_topic", "expected_body"}) {
            QTest::addColumn<QByteArray>(name);
        }
        const auto row = [](const char* name, const char* topic, const char* request,
                            const char* body, const char* expected_topic,
                            const char* expected_body) {
            QTest::newRow(name) << QByteArray(topic) << QByteArray(request) << QByteArray(body)
                                << QByteArray(expected_topic) << QByteArray(expected_body);
        };
        row("request becomes status", "a/request/b", "{}", R"({"d":1})", "a/status/b",
            R"({"d":1})");
        row("every request", "request/myrequest/requests", "{}", R"({"d":1})",
            "status/mystatus/statuss", R"({"d":1})");
        row("case-sensitive", "a/Request/REQUEST", "{}", R"({"d":1})", "a/Request/REQUEST",
            R"({"d":1})");
        row("no request", "a/b", "{}", R"({"d":1})", "a/b", R"({"d":1})");
        row("blanks around", "  a/request \t", "{}", R"({"d":1})", "a/status", R"({"d":1})");
        row("path of the answer", "a/request", "{}", R"({"d":1,"response_topic_default":"x/y"})",
            "local/api/v7/alice/x/y", R"({"d":1})");
        row("request stays in the path of the answer", "a/request", "{}",
            R"({"d":1,"response_topic_default":"request"})", "local/api/v7/alice/request",
            R"({"d":1})");
        row("empty path", "a/request", "{}", R"({"d":1,"response_topic_default":""})",
            "local/api/v7/alice/", R"({"d":1})");
        row("path that is no text", "a/request", "{}", R"({"d":1,"response_topic_default":7})",
            "local/api/v7/alice/", R"({"d":1})");
        row("path with an empty request topic", "", "{}", R"({"d":1,"response_topic_default":"x"})",
            "local/api/v7/alice/x", R"({"d":1})");
        row("nothing but the path", "a/request", "{}", R"({"response_topic_default":"x"})",
            "local/api/v7/alice/x", "{}");
        row("uuid", "a/request", R"({"uuid":"u-1"})", R"({"d":1})", "a/status",
            R"({"d":1,"uuid":"u-1"})");
        row("uuid replaces one of the body", "a/request", R"({"uuid":"u-1"})",
            R"({"d":1,"uuid":"old"})", "a/status", R"({"d":1,"uuid":"u-1"})");
        row("empty uuid", "a/request", R"({"uuid":""})", R"({"d":1})", "a/status", R"({"d":1})");
        row("uuid of blanks is a text", "a/request", R"({"uuid":" "})", R"({"d":1})", "a/status",
            R"({"d":1,"uuid":" "})");
        row("uuid that is no text", "a/request", R"({"uuid":7})", R"({"d":1})", "a/status",
            R"({"d":1})");
    }
    void response() {
        QFETCH(QByteArray, topic);
        QFETCH(QByteArray, request);
        QFETCH(QByteArray, body);
        QFETCH(QByteArray, expected_topic);
        QFETCH(QByteArray, expected_body);
        probe_t handler;
        QSignalSpy spy(&handler, &probe_t::publish_message);
        handler.response(QStringLiteral("alice"), QString::fromLatin1(topic), object(request),
                         object(body));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy[0][0].toString().toLatin1(), expected_topic);
        QCOMPARE(QJsonDocument(spy[0][1].toJsonObject()).toJson(QJsonDocument::Compact),
                 expected_body);
        QCOMPARE(spy[0][2].toBool(), false);
    }

    void an_empty_topic_is_logged_and_not_answered_data() {
        QTest::addColumn<QString>("topic");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << QStringLiteral(" \t\n");
    }
    void an_empty_topic_is_logged_and_not_answered() {
        QFETCH(QString, topic);
        fakes::recording_logger_t logger;
        probe_t handler;
        QSignalSpy spy(&handler, &probe_t::publish_message);
        handler.response(QStringLiteral("alice"), topic, object(R"({"uuid":"1"})"),
                         object(R"({"d":1})"));
        QVERIFY(spy.isEmpty());
        QCOMPARE(logger.lines().size(), 1);
        const auto line = logger.lines().constFirst();
        QCOMPARE(line.message, QStringLiteral("Internal error, missing response topic default!!!"));
        QCOMPARE(line.level, 2);
        QCOMPARE(line.function, QStringLiteral("response"));
        QCOMPARE(line.source, source);
        QVERIFY(line.line > 0);
    }

    void updates_are_published_retained_one_by_one() {
        probe_t handler;
        QSignalSpy spy(&handler, &probe_t::publish_message);
        const QString a = QStringLiteral("a");
        const QString b = QStringLiteral("b");
        handler.handlerUpdateMessageAllUser(a, {b, a});
        handler.handlerUpdateMessageAllUser(QStringList{a, b});
        handler.handlerUpdateMessageByUser(QStringLiteral("bob"), {b, a});
        handler.handlerUpdateMessageAllUser(QStringList());
        QStringList topics;
        for (const QList<QVariant>& call : std::as_const(spy)) {
            topics.append(call[0].toString());
            QVERIFY(call[2].toBool());
            QCOMPARE(call[1].toJsonObject(), object(R"({"n":1})"));
        }
        QCOMPARE(topics, (QStringList{QStringLiteral("a|b,a/1"), QStringLiteral("all a/1"),
                                      QStringLiteral("all b/1"), QStringLiteral("bob+b/1"),
                                      QStringLiteral("bob+a/1")}));
    }

    void every_packet_of_an_update_is_published() {
        probe_t handler;
        handler.two_packets = true;
        QSignalSpy spy(&handler, &probe_t::publish_message);
        handler.handlerUpdateMessageAllUser(QStringLiteral("a"), {});
        QCOMPARE(spy.size(), 2);
    }

    void destruction_is_logged_with_the_version() {
        fakes::recording_logger_t logger;
        { const probe_t handler; }
        QCOMPARE(logger.lines().size(), 1);
        const auto line = logger.lines().constFirst();
        QCOMPARE(line.message, QStringLiteral("Destructor v7"));
        QCOMPARE(line.level, 4);
        QCOMPARE(line.function, QStringLiteral("~mqtt_server_api_base_t"));
        QCOMPARE(line.source, source);
    }
};

QTEST_GUILESS_MAIN(tst_mqtt_server_api_base_t)
#include "tst_mqtt_server_api_base_t.moc"
