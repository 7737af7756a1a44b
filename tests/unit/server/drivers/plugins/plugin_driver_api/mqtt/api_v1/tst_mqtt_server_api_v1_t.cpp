#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"

#include <QJsonDocument>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>
#include <memory>

#include "fakes/recording_logger_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/mqtt/support/furnished_test_t.h"

using interfaces::mqtt_server_api_v1_t;

namespace {

QString latin(const char* _text) {
    return QString::fromLatin1(_text);
}

/// "user/.../id {body}" lines of a table of packets, sorted.
QByteArrayList lines_of(const mqtt_server_api_v1_t::packets_t& _packets) {
    QByteArrayList lines;
    for (auto packet = _packets.cbegin(); packet != _packets.cend(); ++packet) {
        lines.append(packet.key().toLatin1() + ' ' +
                     QJsonDocument(*packet).toJson(QJsonDocument::Compact));
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

QByteArray line(const char* _user, const char* _id, const char* _json) {
    return QByteArray("local/api/v1/") + _user + "/status/elements/objects_list/" + _id +
           R"( {"data":)" + _json + '}';
}

constexpr const char* lamp =
    R"({"functions":{"dim":{"value":"40"},"execute":{"value":"0"}},"name":"Kitchen lamp","type":1})";
constexpr const char* lamp_executes =
    R"({"functions":{"execute":{"value":"0"}},"name":"Kitchen lamp","type":1})";
constexpr const char* lamp_empty = R"({"functions":{},"name":"Kitchen lamp","type":1})";

}  // namespace

class tst_mqtt_server_api_v1_t : public furnished_test_t {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        furnish(true);
        handler = std::make_unique<mqtt_server_api_v1_t>(elements.get(), nullptr);
    }
    void cleanup() {
        handler.reset();
        clear();
    }

    void its_version_word_is_v1() {
        QCOMPARE(mqtt_server_api_v1_t::version, latin("v1"));
        QSignalSpy spy(handler.get(), &mqtt_server_api_v1_t::enable_change);
        handler->setEnable(true);
        QCOMPARE(spy[0][0].toString(), latin("v1"));
    }

    void an_error_is_inserted_into_the_packet() {
        QCOMPARE(handler->packet_error({{latin("a"), 1}}, 418, latin("text")),
                 (QJsonObject{
                     {latin("a"), 1}, {latin("error"), 418}, {latin("message"), latin("text")}}));
    }

    void an_update_goes_to_every_user_who_may_read() {
        QCOMPARE(lines_of(handler->packet_update(latin("e-lamp"))),
                 (QByteArrayList{line("alice", "e-lamp", lamp), line("bob", "e-lamp", lamp)}));
        // bob may only write it
        const auto therm = handler->packet_update(latin("e-therm"));
        QCOMPARE(therm.size(), 1);
        QVERIFY(therm.contains(latin("local/api/v1/alice/status/elements/objects_list/e-therm")));
        QCOMPARE(handler->packet_update(latin("e-night")).size(), 1);
    }

    void an_unknown_id_gives_no_packet() {
        QVERIFY(handler->packet_update(latin("unknown")).isEmpty());
        QVERIFY(handler->packet_update(latin("unknown"), QStringList()).isEmpty());
        QVERIFY(handler->packet_update(latin("alice"), latin("unknown")).isEmpty());
    }

    void changed_restricts_the_functions_data() {
        QTest::addColumn<QStringList>("changed");
        QTest::addColumn<QByteArray>("json");
        const auto row = [](const char* name, const QStringList& changed, const char* json) {
            QTest::newRow(name) << changed << QByteArray(json);
        };
        row("empty: all", {}, lamp);
        row("a function", {latin("execute")}, lamp_executes);
        row("its item", {latin("i-lamp")}, lamp_executes);
        row("item and function of two", {latin("i-lamp"), latin("dim")}, lamp);
        row("all items, as after a load", {latin("i-dim"), latin("i-lamp")}, lamp);
        row("another case", {latin("Execute")}, lamp_empty);
        row("part of a name", {latin("exec")}, lamp_empty);
        row("name in a longer text", {latin("executes")}, lamp_empty);
        row("unknown", {latin("none")}, lamp_empty);
        row("empty text", {QString()}, lamp_empty);
    }
    void changed_restricts_the_functions() {
        QFETCH(QStringList, changed);
        QFETCH(QByteArray, json);
        QCOMPARE(lines_of(handler->packet_update(latin("e-lamp"), changed)),
                 (QByteArrayList{line("alice", "e-lamp", json), line("bob", "e-lamp", json)}));
    }

    void changed_takes_the_full_name_of_a_thermostats_function_data() {
        QTest::addColumn<QString>("changed");
        QTest::addColumn<QStringList>("functions");
        QTest::newRow("full name")
            << latin("thermo/setpoint") << QStringList{latin("thermo/setpoint")};
        QTest::newRow("last segment") << latin("setpoint") << QStringList();
        QTest::newRow("window item: both filed under it")
            << latin("i-win") << QStringList{latin("id_win"), latin("thermo/id_actual")};
        QTest::newRow("item of the measured value") << latin("i-temp") << QStringList();
        QTest::newRow("one of the two") << latin("id_win") << QStringList{latin("id_win")};
    }
    void changed_takes_the_full_name_of_a_thermostats_function() {
        QFETCH(QString, changed);
        QFETCH(QStringList, functions);
        const auto packets = handler->packet_update(latin("e-therm"), QStringList{changed});
        const QJsonObject body = packets.cbegin()->value(latin("data")).toObject();
        QCOMPARE(body.value(latin("functions")).toObject().keys(), functions);
        QCOMPARE(body.keys(), (QStringList{latin("functions"), latin("name"), latin("type")}));
    }

    void a_function_without_an_item_changes_with_the_empty_id() {
        home->add_element(latin("e-x"), latin("X"), 1,
                          {{latin("execute"), latin("i-lamp")}, {latin("open"), QVariant()}});
        home->grant(latin("u-bob"), latin("e-x"), 1);
        elements->setEnabled(true);
        const auto functions = [this](const QStringList& changed) {
            const auto packets = handler->packet_update(latin("e-x"), changed);
            return packets.cbegin()->value(latin("data"))[latin("functions")].toObject().keys();
        };
        QCOMPARE(functions({QString()}), QStringList{latin("open")});
        QCOMPARE(functions({latin("i-lamp")}), QStringList{latin("execute")});
    }

    void an_element_without_functions_is_published_all_the_same() {
        home->add_element(latin("e-x"), latin("X"), 1, {});
        home->grant(latin("u-bob"), latin("e-x"), 1);
        elements->setEnabled(true);
        QCOMPARE(lines_of(handler->packet_update(latin("e-x"))),
                 QByteArrayList{line("bob", "e-x", R"({"functions":{},"name":"X","type":1})")});
    }

    void one_users_update_is_for_listed_users_only() {
        QCOMPARE(lines_of(handler->packet_update(latin("bob"), latin("e-lamp"))),
                 QByteArrayList{line("bob", "e-lamp", lamp)});
        QVERIFY(handler->packet_update(latin("bob"), latin("e-night")).isEmpty());
        QVERIFY(handler->packet_update(latin("eve"), latin("e-lamp")).isEmpty());
        home->remove_user(latin("u-bob"));
        // The element still knows the former grant.
        QVERIFY(handler->packet_update(latin("bob"), latin("e-lamp")).isEmpty());
    }

    void the_whole_list_goes_to_every_user_without_data_around_it() {
        const auto packets = handler->packet_update(QStringList{latin("ignored")});
        QCOMPARE(packets.size(), 2);
        const QJsonObject alice =
            packets.value(latin("local/api/v1/alice/status/elements/objects_list"));
        QCOMPARE(alice.keys(), (QStringList{latin("e-lamp"), latin("e-night"), latin("e-therm")}));
        QCOMPARE(packets.value(latin("local/api/v1/bob/status/elements/objects_list")).keys(),
                 QStringList{latin("e-lamp")});
    }

    void the_whole_list_goes_empty_to_a_user_who_may_read_nothing() {
        home->add_user(latin("u-eve"), latin("eve"));
        const auto packets = handler->packet_update(QStringList());
        QCOMPARE(packets.size(), 3);
        const QString eve = latin("local/api/v1/eve/status/elements/objects_list");
        QVERIFY(packets.contains(eve) && packets.value(eve).isEmpty());
    }

    void the_status_topic_names_user_and_element() {
        QCOMPARE(handler->topic_update_element(latin("bob"), latin("42")),
                 latin("local/api/v1/bob/status/elements/objects_list/42"));
    }

    void retained_messages_that_stay_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("topic");
        QTest::addColumn<bool>("stays");
        const auto row = [](const char* name, const char* user, const char* topic, bool stays) {
            QTest::newRow(name) << latin(user) << latin(topic) << stays;
        };
        row("may read", "bob", "local/api/v1/bob/status/elements/objects_list/e-lamp", true);
        row("denied", "bob", "local/api/v1/bob/status/elements/objects_list/e-night", false);
        row("write only", "bob", "local/api/v1/bob/status/elements/objects_list/e-therm", false);
        row("removed element", "bob", "local/api/v1/bob/status/elements/objects_list/42", false);
        row("unknown user", "eve", "local/api/v1/eve/status/elements/objects_list/e-lamp", false);
        row("judged by the user argument", "bob",
            "local/api/v1/eve/status/elements/objects_list/e-lamp", true);
        row("the user's list", "bob", "local/api/v1/bob/status/elements/objects_list", true);
        row("trailing slash", "bob", "local/api/v1/bob/status/elements/objects_list/42/", true);
        row("one more level", "bob", "local/api/v1/bob/status/elements/objects_list/42/x", true);
        row("text before", "bob", "x/local/api/v1/bob/status/elements/objects_list/42", true);
        row("other version", "bob", "local/api/v2/bob/status/elements/objects_list/42", true);
        row("other case", "bob", "local/api/v1/bob/Status/elements/objects_list/42", true);
        row("character outside", "bob", "local/api/v1/bob/status/elements/objects_list/4 2", true);
        row("an answer", "bob", "local/api/v1/bob/x/status/get/elements/objects_list/42", true);
        row("empty", "bob", "", true);
    }
    void retained_messages_that_stay() {
        QFETCH(QString, user);
        QFETCH(QString, topic);
        QFETCH(bool, stays);
        QCOMPARE(handler->handlerMessageRetained(user, topic, {{latin("data"), 1}}), stays);
        QCOMPARE(handler->handlerMessageRetained(user, topic, {}), stays);
    }

    void without_a_collection_nothing_is_published_and_nothing_stays() {
        elements.reset();
        QVERIFY(handler->packet_update(latin("e-lamp")).isEmpty());
        QVERIFY(handler->packet_update(QStringList()).isEmpty());
        QVERIFY(!handler->handlerMessageRetained(
            latin("bob"), latin("local/api/v1/bob/status/elements/objects_list/e-lamp"), {}));
        handler->populate_acl({});
    }

    void acl_lines_name_the_topic_without_the_user() {
        const mqtt_server_api_v1_t::acl_t acl{
            {latin("alice"), {{latin("42"), latin("read")}, {latin("43"), latin("deny")}}},
            {latin("eve"), {{latin("42"), latin("readwrite")}}}};
        auto lines = mqtt_server_api_v1_t::acl_lines(latin("local/api/v1"),
                                                     {latin("alice"), latin("bob")}, acl);
        lines[latin("alice")].sort();
        QCOMPARE(lines.value(latin("alice")),
                 (QStringList{latin("alice deny local/api/v1/status/elements/objects_list/43"),
                              latin("alice read local/api/v1/status/elements/objects_list/42")}));
        QVERIFY(lines.value(latin("bob")).isEmpty());
        QVERIFY(!lines.contains(latin("eve")));
    }

    void acl_lines_take_markers_literally() {
        const auto lines = mqtt_server_api_v1_t::acl_lines(
            latin("r"), {latin("%2")}, {{latin("%2"), {{latin("%1"), latin("%3")}}}});
        QCOMPARE(lines.value(latin("%2")),
                 QStringList{latin("%2 %3 r/status/elements/objects_list/%1")});
    }

    void an_acl_pass_publishes_nothing_and_logs_nothing() {
        fakes::recording_logger_t logger;
        QSignalSpy published(handler.get(), &mqtt_server_api_v1_t::publish_message);
        QSignalSpy enabled(handler.get(), &mqtt_server_api_v1_t::enable_change);
        handler->populate_acl(elements->get_data_api_elements_acl());
        QVERIFY(published.isEmpty() && enabled.isEmpty() && logger.lines().isEmpty());
    }

 private:
    std::unique_ptr<mqtt_server_api_v1_t> handler;
};

QTEST_GUILESS_MAIN(tst_mqtt_server_api_v1_t)
#include "tst_mqtt_server_api_v1_t.moc"
