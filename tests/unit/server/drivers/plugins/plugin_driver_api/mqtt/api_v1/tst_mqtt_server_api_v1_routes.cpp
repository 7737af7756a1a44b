// The routes of mqtt_server_api_v1_t: which request each topic reaches, and when.
#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"

namespace {

class probe_t : public interfaces::mqtt_server_api_v1_t {
 public:
    using mqtt_server_api_base_t::router;
    using mqtt_server_api_v1_t::mqtt_server_api_v1_t;
};

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

constexpr const char* off = R"({"error":406,"message":"Presentation required"})";
constexpr const char* invalid = R"({"error":405,"message":"Topic not valid"})";

}  // namespace

class tst_mqtt_server_api_v1_routes : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        furnish(true);
        handler = std::make_unique<probe_t>(elements.get(), nullptr);
    }
    void cleanup() {
        handler.reset();
        clear();
    }

    void before_the_routes_are_set_nothing_is_answered() {
        QCOMPARE(ask("alice/x/request/get/elements/objects_list"), QByteArray());
    }

    void requests_data() {
        QTest::addColumn<QByteArray>("topic");
        QTest::addColumn<QByteArray>("payload");
        QTest::addColumn<QByteArray>("answer");
        const auto row = [](const char* topic, const char* payload, const char* answer) {
            QTest::newRow(topic) << QByteArray(topic) << QByteArray(payload) << QByteArray(answer);
        };
        constexpr const char* night =
            R"({"functions":{"execute":{"value":"false"}},"name":"Good night","type":8})";
        const QByteArray one = QByteArray(R"({"data":)") + night + '}';
        row("alice/x/request/get/elements/objects_list/e-night", "{}", one);
        row("alice/x/request/get/elements/objects_list", R"({"filters":{"types":[8]}})",
            QByteArray(R"({"data":{"e-night":)") + night + "}}");
        row("alice/x/request/set/elements/objects_list/e-lamp",
            R"({"data":{"functions":{"execute":1}}})",
            R"({"data":{"functions":{"execute":"202"}}})");
        row("alice/x/request/set/elements/objects_list",
            R"({"data":{"e-lamp":{"functions":{"execute":1}}}})",
            R"({"data":{"e-lamp":{"functions":{"execute":"202"}}}})");
        row("alice/x/request/get/elements/objects_list/unknown", "{}",
            R"({"error":404,"message":"Not found element unknown"})");
        row("alice/x/request/get/elements/objects_list/e-lamp", R"({"filters":{"functions":[]}})",
            R"({"error":400,"message":"Non-compliant payload"})");
        row("bob/x/request/get/elements/objects_list/e-night", "{}",
            R"({"error":401,"message":"Unauthorized user: configure user API on App"})");
        row("alice/x/request/delete/elements/objects_list", "{}", invalid);
        row("alice/x/request/get/elements/objects_list/", "{}", invalid);
        row("alice/x/request/get/elements", "{}", invalid);
        row("alice/request/get/elements/objects_list", "{}", invalid);
        row("ali ce/x/request/get/elements/objects_list", "{}", invalid);
    }
    void requests() {
        QFETCH(QByteArray, topic);
        QFETCH(QByteArray, payload);
        QFETCH(QByteArray, answer);
        handler->init_route(true);
        QCOMPARE(ask(topic, payload), answer);
        QCOMPARE(QString::fromLatin1(answer_topic),
                 latin("local/api/v1/") +
                     QString::fromLatin1(topic).replace(latin("request"), latin("status")));
        QVERIFY(!answer_retained);
    }

    void a_payload_that_is_no_object_is_refused_by_writes_only() {
        handler->init_route(true);
        const auto asked = [this](const char* _path) {
            const QJsonValue answer =
                handler->router
                    .process(latin("local/api/v1/alice/x/request/") + latin(_path),
                             QVariant(QJsonArray{1}), {})
                    .toJsonValue();
            return QJsonDocument(answer.toObject()).toJson(QJsonDocument::Compact);
        };
        const QByteArray bad = R"({"error":400,"message":"Non-compliant payload"})";
        QCOMPARE(asked("set/elements/objects_list/e-lamp"), bad);
        QCOMPARE(asked("set/elements/objects_list"), bad);
        QVERIFY(asked("get/elements/objects_list/e-lamp").startsWith(R"({"data")"));
        QVERIFY(asked("get/elements/objects_list").startsWith(R"({"data")"));
    }

    void the_user_is_the_topics_level_not_the_argument() {
        handler->init_route(true);
        QVERIFY(ask("bob/x/request/get/elements/objects_list/e-night", "{}", "alice")
                    .contains("\"error\":401"));
        QVERIFY(ask("alice/x/request/get/elements/objects_list/e-night", "{}", "bob")
                    .startsWith(R"({"data")"));
    }

    void while_disabled_everything_needs_presentation() {
        handler->init_route(false);
        QCOMPARE(ask("alice/x/request/get/elements/objects_list"), QByteArray(off));
        QCOMPARE(ask("nonsense"), QByteArray(off));
        handler->init_route(true);
        QCOMPARE(ask("nonsense"), QByteArray(invalid));
        handler->init_route(false);
        for (const char* topic :
             {"a/b/request/get/elements/objects_list", "a/b/request/get/elements/objects_list/x",
              "a/b/request/set/elements/objects_list", "a/b/request/set/elements/objects_list/x",
              "nonsense"}) {
            QCOMPARE(ask(topic), QByteArray(off));
        }
    }

    void the_fallback_looks_at_the_flag_itself() {
        handler->init_route(true);
        handler->setEnable(false);
        QCOMPARE(ask("nonsense"), QByteArray(off));
        handler->setEnable(true);
        QCOMPARE(ask("nonsense"), QByteArray(invalid));
    }

    void the_routes_have_priority_1() {
        handler->init_route(true);
        const auto answer = [](const char* word) {
            return [word](const QString&, const QVariant&, const QStringList&,
                          const QMap<QString, QVariant>&) {
                return QJsonValue(QJsonObject{{latin("by"), latin(word)}});
            };
        };
        const char* topic = "alice/x/request/get/elements/objects_list";
        handler->router.route(latin("^.*$"), answer("low"), mqtt::PRIORITY_ROUTE(0));
        QVERIFY(ask(topic).startsWith(R"({"data")"));
        handler->router.route(latin("^.*$"), answer("equal"), mqtt::PRIORITY_ROUTE(1));
        QVERIFY(ask(topic).startsWith(R"({"data")"));
        handler->router.route(latin("^.*$"), answer("high"), mqtt::PRIORITY_ROUTE(2));
        QCOMPARE(ask(topic), QByteArray(R"({"by":"high"})"));
    }

    void a_deleted_collection_counts_as_empty() {
        handler->init_route(true);
        elements.reset();
        QCOMPARE(ask("alice/x/request/get/elements/objects_list"), QByteArray(R"({"data":{}})"));
        QVERIFY(ask("alice/x/request/get/elements/objects_list/e-lamp").contains("Not found"));
    }

    void the_uuid_comes_back() {
        handler->init_route(true);
        QCOMPARE(ask("nonsense", R"({"uuid":"u-1"})"),
                 QByteArray(R"({"error":405,"message":"Topic not valid","uuid":"u-1"})"));
    }

 private:
    /// The answer to one request as compact JSON; empty: none.
    QByteArray ask(const QByteArray& _topic, const QByteArray& _payload = "{}",
                   const char* _user = "alice") {
        QSignalSpy spy(handler.get(), &probe_t::publish_message);
        handler->handlerMessage(latin(_user), latin("local/api/v1/") + QString::fromLatin1(_topic),
                                QJsonDocument::fromJson(_payload).object());
        if (spy.isEmpty()) {
            return {};
        }
        answer_topic = spy[0][0].toString().toLatin1();
        answer_retained = spy[0][2].toBool();
        return QJsonDocument(spy[0][1].toJsonObject()).toJson(QJsonDocument::Compact);
    }

    std::unique_ptr<probe_t> handler;
    QByteArray answer_topic;
    bool answer_retained = false;
};

QTEST_GUILESS_MAIN(tst_mqtt_server_api_v1_routes)
#include "tst_mqtt_server_api_v1_routes.moc"
