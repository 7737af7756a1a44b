#include <QJsonDocument>
#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"
#include "fakes/memory_database_t.h"

using interfaces::data_api_element_object_t;
namespace v1 = interfaces::v1;

namespace {

QJsonObject json(const QByteArray& _text) {
    return QJsonDocument::fromJson(_text).object();
}

}  // namespace

/// Version 1 JSON on base objects, as the collection holds them.
class tst_element_json_v1 : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;

    /// @return the element's keys below "functions", sorted
    static QStringList functions(const QJsonObject& _element) {
        return _element.value("functions").toObject().keys();
    }
    data_api_element_object_t* element(const QString& _id, QObject* _parent) const {
        return new data_api_element_object_t(database->get(), _id, _parent);
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "1");
        database->add_item("i-temp", "21.5");
        database->add_item("i-win", "0");
        database->add_scenary("s", true);
        database->add_element("e-lamp", "Lamp \u00e9", 1, {{"execute", "i"}, {"status", ""}});
        database->add_scenario_element("e-night", "Night", "s");
        database->add_thermostat("t", {{"setpoint", "i"}}, "i-temp", "i-win");
        database->add_thermo_element("e-therm", "Living room", "t");
        database->add_element("e-bare", "Nothing", 1, {});
        database->add_user("u-alice", "alice");
        database->add_user("u-bob", "bob");
        database->add_user("u-carl", "carl");
        for (const char* id : {"e-lamp", "e-night", "e-therm", "e-bare"}) {
            database->grant("u-alice", id, 3);
            database->grant("u-bob", id, 2);
        }
        database->grant("u-carl", "e-lamp", 1);
    }

    void an_element_is_rendered_with_texts_as_values() {
        QObject parent;
        QCOMPARE(v1::to_json(*element("e-lamp", &parent)), json(R"({"name":"Lamp é","type":1,
                     "functions":{"execute":{"value":"1"},"status":{"value":""}}})"));
        QCOMPARE(v1::to_json(*element("e-bare", &parent)),
                 json(R"({"name":"Nothing","type":1,"functions":{}})"));
        QCOMPARE(v1::to_json(*element("e-night", &parent)),
                 json(R"({"name":"Night","type":8,"functions":{"execute":{"value":"true"}}})"));
        QCOMPARE(functions(v1::to_json(*element("e-therm", &parent))),
                 (QStringList{"id_win", "thermo/id_actual", "thermo/setpoint"}));
    }

    void a_user_needs_the_read_bit_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("read and write") << "alice" << true;
        QTest::newRow("write only") << "bob" << false;
        QTest::newRow("read only") << "carl" << true;
        QTest::newRow("unknown") << "nobody" << false;
    }
    void a_user_needs_the_read_bit() {
        QFETCH(const QString, user);
        QFETCH(const bool, allowed);
        QObject parent;
        auto* lamp = element("e-lamp", &parent);
        int code = 0;
        const QJsonObject seen = v1::to_json(*lamp, user, {}, code);
        QCOMPARE(code, allowed ? 202 : 401);
        QCOMPARE(seen, allowed ? v1::to_json(*lamp) : json(R"({"error":401})"));
    }

    void a_refused_user_is_refused_before_any_filter() {
        QObject parent;
        int code = 0;
        const QJsonObject seen =
            v1::to_json(*element("e-lamp", &parent), "bob", json(R"({"types":[8]})"), code);
        QCOMPARE(code, 401);
        QCOMPARE(seen, json(R"({"error":401})"));
    }

    void types_filter_data() {
        QTest::addColumn<QByteArray>("filter");
        QTest::addColumn<bool>("passes");
        QTest::newRow("no filter") << QByteArray("{}") << true;
        QTest::newRow("its type") << QByteArray(R"({"types":[1]})") << true;
        QTest::newRow("one of many") << QByteArray(R"({"types":[8,17,1]})") << true;
        QTest::newRow("another type") << QByteArray(R"({"types":[8]})") << false;
        QTest::newRow("decimal spelling") << QByteArray(R"({"types":[1.0]})") << true;
        QTest::newRow("fraction") << QByteArray(R"({"types":[1.5]})") << false;
        QTest::newRow("text") << QByteArray(R"({"types":["1"]})") << false;
        QTest::newRow("true is no number") << QByteArray(R"({"types":[true]})") << false;
        QTest::newRow("empty array") << QByteArray(R"({"types":[]})") << true;
        QTest::newRow("no array") << QByteArray(R"({"types":8})") << true;
        QTest::newRow("null") << QByteArray(R"({"types":null})") << true;
    }
    void types_filter() {
        QFETCH(const QByteArray, filter);
        QFETCH(const bool, passes);
        QObject parent;
        auto* lamp = element("e-lamp", &parent);
        int code = 0;
        const QJsonObject seen = v1::to_json(*lamp, "alice", json(filter), code);
        QCOMPARE(code, 202);
        QCOMPARE(seen, passes ? v1::to_json(*lamp) : QJsonObject());
    }

    void functions_filter_data() {
        QTest::addColumn<QByteArray>("filter");
        QTest::addColumn<QStringList>("left");
        const QStringList all{"id_win", "thermo/id_actual", "thermo/setpoint"};
        QTest::newRow("last segment")
            << QByteArray(R"(["id_actual"])") << QStringList("thermo/id_actual");
        QTest::newRow("whole name without slash")
            << QByteArray(R"(["id_win"])") << QStringList("id_win");
        QTest::newRow("full name matches nothing")
            << QByteArray(R"(["thermo/setpoint"])") << QStringList();
        QTest::newRow("first segment matches nothing")
            << QByteArray(R"(["thermo"])") << QStringList();
        QTest::newRow("two") << QByteArray(R"(["id_win","setpoint"])")
                             << QStringList{"id_win", "thermo/setpoint"};
        QTest::newRow("case-sensitive") << QByteArray(R"(["ID_WIN"])") << QStringList();
        QTest::newRow("number") << QByteArray("[1]") << QStringList();
        QTest::newRow("empty array") << QByteArray("[]") << all;
        QTest::newRow("no array") << QByteArray(R"("id_win")") << all;
    }
    void functions_filter() {
        QFETCH(const QByteArray, filter);
        QObject parent;
        int code = 0;
        const QJsonObject seen = v1::to_json(*element("e-therm", &parent), "alice",
                                             json(R"({"functions":)" + filter + '}'), code);
        QCOMPARE(code, 202);
        QCOMPARE(seen.keys(), (QStringList{"functions", "name", "type"}));
        QTEST(functions(seen), "left");
    }

    void a_name_of_several_segments_is_filtered_by_its_last() {
        database->add_element("e", "E", 1, {{"a/b/c", "i"}, {"a/", "i"}});
        database->grant("u-alice", "e", 1);
        QObject parent;
        auto* made = element("e", &parent);
        int code = 0;
        QCOMPARE(functions(v1::to_json(*made, "alice", json(R"({"functions":["c"]})"), code)),
                 QStringList("a/b/c"));
        QCOMPARE(functions(v1::to_json(*made, "alice", json(R"({"functions":[""]})"), code)),
                 QStringList("a/"));
    }

    void the_collection_shows_what_a_user_may_see_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QByteArray>("filter");
        QTest::addColumn<QStringList>("ids");
        const QByteArray open("{}");
        QTest::newRow("all but the one without functions")
            << "alice" << open << QStringList{"e-lamp", "e-night", "e-therm"};
        QTest::newRow("write only") << "bob" << open << QStringList();
        QTest::newRow("one grant") << "carl" << open << QStringList("e-lamp");
        QTest::newRow("unknown user") << "nobody" << open << QStringList();
        QTest::newRow("type") << "alice" << QByteArray(R"({"types":[8]})")
                              << QStringList("e-night");
        QTest::newRow("function") << "alice" << QByteArray(R"({"functions":["execute"]})")
                                  << QStringList{"e-lamp", "e-night"};
        QTest::newRow("type and function")
            << "alice" << QByteArray(R"({"types":[1,17],"functions":["execute"]})")
            << QStringList("e-lamp");
        QTest::newRow("nothing left")
            << "alice" << QByteArray(R"({"functions":["none"]})") << QStringList();
    }
    void the_collection_shows_what_a_user_may_see() {
        QFETCH(const QString, user);
        QFETCH(const QByteArray, filter);
        interfaces::data_api_elements_t elements(database->get(), nullptr);
        elements.init();
        const QJsonObject seen = v1::to_json(elements, user, json(filter));
        QTEST(seen.keys(), "ids");
        for (auto one = seen.begin(); one != seen.end(); ++one) {
            int code = 0;
            auto object = elements.get_data_api_element_object(one.key());
            QCOMPARE(one.value().toObject(), v1::to_json(*object, user, json(filter), code));
        }
    }

    void a_write_reports_each_function_as_text() {
        QObject parent;
        int code = 0;
        const QJsonObject answer = v1::request_set_value(
            *element("e-lamp", &parent), "alice",
            {{"execute", true}, {"none", 1}, {"status", 1}, {"execute", 5}}, code);
        QCOMPARE(code, 202);
        QCOMPARE(answer, json(R"({"functions":{"execute":"202","none":"404","status":"404"}})"));
        QCOMPARE(database->item_requests,
                 (QList<std::pair<QString, QString>>{{"i", "1"}, {"i", "5"}}));
    }

    void a_later_pair_overwrites_the_status() {
        QObject parent;
        int code = 0;
        QCOMPARE(v1::request_set_value(*element("e-lamp", &parent), "alice",
                                       {{"execute", 1}, {"execute", "bad"}}, code),
                 json(R"({"functions":{"execute":"404"}})"));
        QCOMPARE(code, 202);
        QCOMPARE(v1::request_set_value(*element("e-lamp", &parent), "alice", {}, code),
                 json(R"({"functions":{}})"));
    }

    void a_write_needs_the_write_bit_data() {
        QTest::addColumn<QString>("user");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("read and write") << "alice" << true;
        QTest::newRow("write only") << "bob" << true;
        QTest::newRow("read only") << "carl" << false;
        QTest::newRow("unknown") << "nobody" << false;
    }
    void a_write_needs_the_write_bit() {
        QFETCH(const QString, user);
        QFETCH(const bool, allowed);
        QObject parent;
        int code = 0;
        const QJsonObject answer =
            v1::request_set_value(*element("e-lamp", &parent), user, {{"execute", 1}}, code);
        QCOMPARE(code, allowed ? 202 : 401);
        QCOMPARE(answer,
                 allowed ? json(R"({"functions":{"execute":"202"}})") : json(R"({"error":401,
                                     "message":"Configure user on API on App"})"));
        QCOMPARE(database->item_requests.size(), allowed ? 1 : 0);
    }
};

QTEST_GUILESS_MAIN(tst_element_json_v1)
#include "tst_element_json_v1.moc"
