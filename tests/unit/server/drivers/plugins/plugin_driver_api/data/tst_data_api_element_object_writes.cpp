#include <QJsonArray>
#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"
#include "fakes/memory_database_t.h"

using interfaces::data_api_element_object_t;
using item_requests_t = QList<std::pair<QString, QString>>;
using scenary_requests_t = QList<std::pair<QString, bool>>;

/// Requests for new values.
class tst_data_api_element_object_writes : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_element_object_t> element;

    void load() {
        element = std::make_unique<data_api_element_object_t>(database->get(), "e", nullptr);
    }
    bool write(const QString& _function, const QJsonValue& _value) {
        return element->requestSetValue({_function, _value});
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "5");
    }
    void cleanup() { element.reset(); }

    void an_item_is_asked_for_a_number_as_text_data() {
        QTest::addColumn<QJsonValue>("value");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("text");
        QTest::newRow("true") << QJsonValue(true) << true << "1";
        QTest::newRow("false") << QJsonValue(false) << true << "0";
        QTest::newRow("zero") << QJsonValue(0) << true << "0";
        QTest::newRow("decimal") << QJsonValue(21.5) << true << "21.5";
        QTest::newRow("negative") << QJsonValue(-3) << true << "-3";
        QTest::newRow("large") << QJsonValue(12345678) << true << "1.23457e+07";
        QTest::newRow("digits") << QJsonValue("007") << true << "007";
        QTest::newRow("empty text") << QJsonValue("") << false << "";
        QTest::newRow("word") << QJsonValue("on") << false << "";
        QTest::newRow("decimal text") << QJsonValue("21.5") << false << "";
        QTest::newRow("null") << QJsonValue() << false << "";
        QTest::newRow("object") << QJsonValue(QJsonObject{{"a", 1}}) << false << "";
        QTest::newRow("array") << QJsonValue(QJsonArray{1}) << false << "";
    }
    void an_item_is_asked_for_a_number_as_text() {
        QFETCH(const QJsonValue, value);
        QFETCH(const bool, accepted);
        QFETCH(const QString, text);
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        QCOMPARE(write("execute", value), accepted);
        QCOMPARE(database->item_requests,
                 accepted ? item_requests_t({{"i", text}}) : item_requests_t());
    }

    void a_scenario_is_asked_for_execution_data() {
        QTest::addColumn<QJsonValue>("value");
        QTest::addColumn<int>("execution");  // -1: refused
        QTest::newRow("true") << QJsonValue(true) << 1;
        QTest::newRow("false") << QJsonValue(false) << 0;
        QTest::newRow("number 1") << QJsonValue(1) << 1;
        QTest::newRow("number 0 executes too") << QJsonValue(0) << 1;
        QTest::newRow("number 2") << QJsonValue(2) << -1;
        QTest::newRow("text 1") << QJsonValue("1") << 1;
        QTest::newRow("text 0") << QJsonValue("0") << 0;
        QTest::newRow("text 2") << QJsonValue("2") << -1;
        QTest::newRow("text true") << QJsonValue("true") << -1;
        QTest::newRow("empty text") << QJsonValue("") << -1;
        QTest::newRow("null") << QJsonValue() << -1;
    }
    void a_scenario_is_asked_for_execution() {
        QFETCH(const QJsonValue, value);
        QFETCH(const int, execution);
        database->add_scenary("s", false);
        database->add_scenario_element("e", "Night", "s");
        load();
        QCOMPARE(write("execute", value), execution >= 0);
        QCOMPARE(database->scenary_requests, execution >= 0
                                                 ? scenary_requests_t({{"s", execution == 1}})
                                                 : scenary_requests_t());
        QVERIFY(database->item_requests.isEmpty());
    }

    void a_request_changes_no_value_itself() {
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        QVERIFY(write("execute", 7));
        QCOMPARE(element->getFunctionValues().value("execute"), "5");
        QCOMPARE(element->getItemsValue("i"), "5");
    }

    void an_unknown_function_is_refused() {
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        QVERIFY(!write("other", 1));
        QVERIFY(!write("", 1));
        QVERIFY(!write("EXECUTE", 1));
        QVERIFY(database->item_requests.isEmpty());
        QVERIFY(!element->getFunctioName().contains("other"));
    }

    void a_function_without_an_item_is_refused() {
        database->add_item("", "1");
        database->add_element("e", "Lamp", 1, {{"execute", QVariant()}, {"other", ""}});
        load();
        QVERIFY(!write("execute", 1));
        QVERIFY(!write("other", 1));
        QVERIFY(database->item_requests.isEmpty());
    }

    void an_item_or_scenario_that_the_database_lacks_is_refused() {
        database->add_element("e", "Lamp", 1, {{"execute", "i-none"}});
        load();
        QVERIFY(!write("execute", 1));
        QVERIFY(!element->setItemValue("i-none", "1"));
        database->add_scenario_element("e", "Night", "s-none");
        load();
        QVERIFY(!write("execute", true));
        QVERIFY(!element->setExecScena("s-none", true));
        QVERIFY(database->item_requests.isEmpty());
        QVERIFY(database->scenary_requests.isEmpty());
    }

    void a_scenario_with_negative_flags_still_asks_a_scenario() {
        database->add_scenary("i", false);
        database->add_item("j", "0");
        database->add_scenario_element("e", "Night", "s", -1, {{"a", "i"}, {"b", "j"}});
        load();
        QVERIFY(write("a", true));
        QCOMPARE(database->scenary_requests, (scenary_requests_t{{"i", true}}));
        QVERIFY(!write("b", true));
        QVERIFY(database->item_requests.isEmpty());
    }

    void second_functions_on_an_item_are_writable() {
        database->add_element("e", "Lamp", 1, {{"a", "i"}, {"b", "i"}});
        load();
        QVERIFY(write("b", 1));
        QCOMPARE(database->item_requests, (item_requests_t{{"i", "1"}}));
    }

    void thermostat_functions_are_written_by_their_full_name() {
        database->add_item("i-win", "0");
        database->add_thermostat("t", {{"setpoint", "i"}}, "i-temp", "i-win");
        database->add_thermo_element("e", "Living room", "t");
        load();
        QVERIFY(write("thermo/setpoint", 20));
        QVERIFY(!write("setpoint", 20));
        QVERIFY(write("id_win", true));
        QCOMPARE(database->item_requests, (item_requests_t{{"i", "20"}, {"i-win", "1"}}));
    }

    void direct_requests_reach_the_database() {
        database->add_scenary("s", true);
        database->add_element("e", "Lamp", 1, {});
        load();
        QVERIFY(element->setItemValue("i", "any text"));
        QVERIFY(element->setExecScena("s", false));
        QCOMPARE(database->item_requests, (item_requests_t{{"i", "any text"}}));
        QCOMPARE(database->scenary_requests, (scenary_requests_t{{"s", false}}));
    }

    void a_deleted_database_refuses_everything() {
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        database.reset();
        QVERIFY(!write("execute", 1));
        QVERIFY(!element->setItemValue("i", "1"));
        QVERIFY(!element->setExecScena("s", true));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_writes)
#include "tst_data_api_element_object_writes.moc"
