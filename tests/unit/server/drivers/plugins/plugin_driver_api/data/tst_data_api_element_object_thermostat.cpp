#include <QTest>
#include <memory>

#include "fakes/memory_database_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_element_object_t;
using hash_t = QHash<QString, QString>;
using ids_t = QHash<QString, QStringList>;

/// An element of type 17: the functions of a thermostat logic.
class tst_data_api_element_object_thermostat : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;

    std::unique_ptr<data_api_element_object_t> element() const {
        return std::make_unique<data_api_element_object_t>(database->get(), "e", nullptr);
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i-mode", "2");
        database->add_item("i-set", "20");
        database->add_item("i-temp", "21.5");
        database->add_item("i-win", "1");
        database->add_thermo_element("e", "Living room", "t");
    }

    void it_has_a_function_for_each_key_and_two_under_the_window_contact() {
        database->add_thermostat("t", {{"mode", "i-mode"}, {"setpoint", "i-set"}}, "i-temp",
                                 "i-win");
        const auto made = element();
        QCOMPARE(made->getTypeElement(), 17);
        QCOMPARE(made->getFunctionIds(), (ids_t{{"i-mode", {"thermo/mode"}},
                                                {"i-set", {"thermo/setpoint"}},
                                                {"i-win", {"thermo/id_actual"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"thermo/mode", "i-mode"},
                                                 {"thermo/setpoint", "i-set"},
                                                 {"thermo/id_actual", "i-win"},
                                                 {"id_win", "i-win"}}));
        QCOMPARE(made->getFunctionValues(), (hash_t{{"thermo/mode", "2"},
                                                    {"thermo/setpoint", "20"},
                                                    {"thermo/id_actual", ""},
                                                    {"id_win", ""}}));
    }

    void the_two_values_are_looked_up_with_values_as_ids() {
        database->add_item("21.5", "by temperature");
        database->add_item("1", "by window");
        database->add_thermostat("t", {}, "i-temp", "i-win");
        QCOMPARE(element()->getFunctionValues(),
                 (hash_t{{"thermo/id_actual", "by temperature"}, {"id_win", "by window"}}));
    }

    void keys_without_an_item_are_left_out() {
        database->add_thermostat("t", {{"a", QVariant()}, {"b", ""}, {"c", "  "}, {"d", "i-none"}},
                                 "i-temp", "i-win");
        QCOMPARE(element()->getFunctionValues(),
                 (hash_t{{"thermo/d", ""}, {"thermo/id_actual", ""}, {"id_win", ""}}));
    }

    void without_a_window_contact_both_are_filed_under_the_empty_id() {
        database->add_thermostat("t", {}, "i-temp", "");
        const auto made = element();
        QCOMPARE(made->getFunctionIds(), (ids_t{{"", {"thermo/id_actual"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"thermo/id_actual", ""}, {"id_win", ""}}));
    }

    void a_key_on_the_window_contact_is_listed_first() {
        database->add_thermostat("t", {{"window", "i-win"}}, "i-temp", "i-win");
        QCOMPARE(element()->getFunctionIds(), (ids_t{{"i-win", {"thermo/window"}}}));
    }

    void a_key_id_actual_keeps_its_item_and_value() {
        database->add_thermostat("t", {{"id_actual", "i-temp"}}, "i-temp", "i-win");
        const auto made = element();
        QCOMPARE(made->getFunctioName().value("thermo/id_actual"), "i-temp");
        QCOMPARE(made->getFunctionValues().value("thermo/id_actual"), "21.5");
        QCOMPARE(made->getFunctionIds(),
                 (ids_t{{"i-temp", {"thermo/id_actual"}}, {"i-win", {"thermo/id_actual"}}}));
    }

    void an_unknown_thermostat_gives_no_functions() {
        const auto made = element();
        QCOMPARE(made->getNameElement(), "Living room");
        QVERIFY(made->getFunctionIds().isEmpty());
        QVERIFY(made->getFunctionValues().isEmpty());
    }

    void an_element_of_another_class_gives_no_functions() {
        database->add_thermostat("t", {{"mode", "i-mode"}}, "i-temp", "i-win");
        database->add_element("e", "Not a thermostat", 17, {{"execute", "i-mode"}});
        QVERIFY(element()->getFunctionValues().isEmpty());
    }

    void the_function_map_of_a_thermostat_element_is_not_used() {
        database->add_thermostat("t", {}, "i-temp", "i-win");
        const fakes::objects::ps_element_data_t data{"T", 17, -1, {{"execute", "i-mode"}}};
        database->tables().put("e", std::make_unique<fakes::objects::psoe_thermo_logic>(data, "t"));
        QVERIFY(!element()->getFunctionValues().contains("execute"));
        QVERIFY(element()->getFunctionValues().contains("id_win"));
    }

    void a_status_change_adds_missing_functions_and_says_nothing() {
        database->add_thermostat("t", {{"mode", "i-mode"}}, "i-temp", "i-win");
        const auto made = element();
        made->init_event(true);
        kit::event_recorder_t events(made.get());
        database->add_item("i-mode", "9");
        database->add_thermostat("t", {{"mode", "i-mode"}, {"setpoint", "i-set"}}, "i-temp",
                                 "i-win");
        Q_EMIT database->persistent()->onPersistentStatusThermo({}, "other");
        QCoreApplication::processEvents();
        QVERIFY(!made->getFunctionValues().contains("thermo/setpoint"));
        Q_EMIT database->persistent()->onPersistentStatusThermo({}, "t");
        QVERIFY(!made->getFunctionValues().contains("thermo/setpoint"));
        QCoreApplication::processEvents();
        QCOMPARE(made->getFunctionValues().value("thermo/setpoint"), "20");
        QCOMPARE(made->getFunctionValues().value("thermo/mode"), "2");
        QCOMPARE(events.take(), QStringList());
    }

    void a_status_change_is_nothing_to_other_types() {
        database->add_thermostat("t", {}, "i-temp", "i-win");
        database->add_element("e", "Lamp", 1, {});
        const auto made = element();
        // The element became a thermostat; the object has not been loaded again.
        const fakes::objects::ps_element_data_t data{"T", 17, 0, {{"execute", "i-mode"}}};
        database->tables().put("e", std::make_unique<fakes::objects::psoe_thermo_logic>(data, "t"));
        QVERIFY(QMetaObject::invokeMethod(made.get(), "onPersistentStatusThermo",
                                          Q_ARG(QJsonObject, {}), Q_ARG(QString, "t")));
        QVERIFY(made->getFunctionValues().isEmpty());
    }

    void a_status_change_of_a_removed_element_is_survived() {
        database->add_thermostat("t", {{"mode", "i-mode"}}, "i-temp", "i-win");
        const auto made = element();
        const hash_t before = made->getFunctionValues();
        const auto change = [&made] {
            return QMetaObject::invokeMethod(made.get(), "onPersistentStatusThermo",
                                             Q_ARG(QJsonObject, {}), Q_ARG(QString, "t"));
        };
        database->remove_element("e");
        QVERIFY(change());
        QCOMPARE(made->getFunctionValues(), before);
        database.reset();
        QVERIFY(change());
        QCOMPARE(made->getFunctionValues(), before);
    }

    void a_change_of_the_window_contact_is_told_as_the_actual_temperature() {
        database->add_thermostat("t", {}, "i-temp", "i-win");
        const auto made = element();
        made->init_event(true);
        kit::event_recorder_t events(made.get());
        database->set_item("i-win", "0");
        QCoreApplication::processEvents();
        QCOMPARE(events.take(),
                 QStringList("value e [thermo/id_actual] {id_win=,thermo/id_actual=0}"));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_thermostat)
#include "tst_data_api_element_object_thermostat.moc"
