#include <QJsonArray>
#include <QTest>

#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_v1_t.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_v1_t.h"
#include "drivers/plugins/plugin_driver_api/data/element_json_v1.h"
#include "fakes/memory_database_t.h"

using interfaces::data_api_element_object_v1_t;
using interfaces::data_api_elements_v1_t;
namespace v1 = interfaces::v1;

/// The thin version 1 classes give what the functions on the base give.
class tst_data_api_v1_classes : public QObject {
    Q_OBJECT

    fakes::memory_database_t database;

 private Q_SLOTS:
    void initTestCase() {
        database.add_item("i", "1");
        database.add_element("e", "Lamp", 1, {{"execute", "i"}, {"status", ""}});
        database.add_user("u-alice", "alice");
        database.add_user("u-bob", "bob");
        database.grant("u-alice", "e", 3);
        database.grant("u-bob", "e", 2);
    }
    void init() { database.item_requests.clear(); }

    void an_element_renders_itself() {
        data_api_element_object_v1_t element(database.get(), "e", nullptr);
        const QJsonObject open = element.toJson();
        QCOMPARE(open.value("name").toString(), "Lamp");
        QCOMPARE(open, v1::to_json(element));
        const QJsonObject filter{{"functions", QJsonArray{"execute"}}};
        int code = 0;
        const QJsonObject seen = element.toJson("alice", filter, code);
        QCOMPARE(code, 202);
        QCOMPARE(seen.value("functions").toObject().keys(), QStringList("execute"));
        QCOMPARE(element.toJson("bob", filter, code), (QJsonObject{{"error", 401}}));
        QCOMPARE(code, 401);
    }

    void an_element_takes_values_for_a_user_and_directly() {
        data_api_element_object_v1_t element(database.get(), "e", nullptr);
        int code = 0;
        QCOMPARE(element.requestSetValue("bob", {{"execute", 4}}, code),
                 (QJsonObject{{"functions", QJsonObject{{"execute", "202"}}}}));
        QCOMPARE(code, 202);
        QVERIFY(element.requestSetValue({"execute", 6}));
        QCOMPARE(database.item_requests,
                 (QList<std::pair<QString, QString>>{{"i", "4"}, {"i", "6"}}));
        element.requestSetValue("nobody", {{"execute", 4}}, code);
        QCOMPARE(code, 401);
        QCOMPARE(database.item_requests.size(), 2);
    }

    void the_collection_renders_itself() {
        data_api_elements_v1_t elements(database.get(), nullptr);
        elements.init();
        const QJsonObject seen = elements.toJson("alice", {});
        QCOMPARE(seen.keys(), QStringList("e"));
        QCOMPARE(seen, v1::to_json(elements, "alice", {}));
        QVERIFY(elements.toJson("alice", {{"types", QJsonArray{2}}}).isEmpty());
        QVERIFY(elements.toJson("bob", {}).isEmpty());
    }

    void the_collection_holds_base_objects() {
        data_api_elements_v1_t elements(database.get(), nullptr);
        elements.init();
        QCOMPARE(elements.get_data_api_element_object("e")->metaObject(),
                 &interfaces::data_api_element_object_t::staticMetaObject);
    }
};

QTEST_GUILESS_MAIN(tst_data_api_v1_classes)
#include "tst_data_api_v1_classes.moc"
