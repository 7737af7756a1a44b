#include <QTest>
#include <limits>
#include <memory>

#include "fakes/memory_database_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_element_object_t;
using hash_t = QHash<QString, QString>;
using ids_t = QHash<QString, QStringList>;

/// Which functions, items and values an element has.
class tst_data_api_element_object_functions : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;

    std::unique_ptr<data_api_element_object_t> element(const QString& _id = "e") const {
        return std::make_unique<data_api_element_object_t>(database->get(), _id, nullptr);
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i-1", "1");
        database->add_item("i-2", "2");
    }

    void an_element_has_the_databases_name_type_and_functions() {
        database->add_element("e", "Lamp", 1, {{"execute", "i-1"}, {"status", "i-2"}});
        QObject parent;
        auto* made = new data_api_element_object_t(database->get(), "e", &parent);
        QCOMPARE(made->parent(), &parent);
        QCOMPARE(made->getName(), "data");
        QCOMPARE(made->getIdElement(), "e");
        QCOMPARE(made->getNameElement(), "Lamp");
        QCOMPARE(made->getTypeElement(), 1);
        QCOMPARE(made->getFunctionIds(), (ids_t{{"i-1", {"execute"}}, {"i-2", {"status"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"execute", "i-1"}, {"status", "i-2"}}));
        QCOMPARE(made->getFunctionValues(), (hash_t{{"execute", "1"}, {"status", "2"}}));
    }

    void an_unknown_element_is_empty_and_silent() {
        database->add_user("u", "alice");
        database->grant("u", "e", 3);
        const auto made = element();
        QCOMPARE(made->getTypeElement(), -1);
        QCOMPARE(made->getNameElement(), "");
        QVERIFY(made->getFunctionIds().isEmpty());
        QVERIFY(made->getPermissions().isEmpty());
        QVERIFY(made->getACL().isEmpty());
        QVERIFY(!made->getPermission());
        kit::event_recorder_t events(made.get());
        made->init();
        made->populateFunctions();
        QCOMPARE(events.take(), QStringList());
        // It stays in its initialisation, so grants stay unannounced.
        made->populatePermission();
        QCOMPARE(made->getACL(), (hash_t{{"alice", "readwrite"}}));
        QCOMPARE(events.take(), QStringList());
    }

    void a_missing_item_gives_an_empty_value() {
        database->add_element("e", "Lamp", 1, {{"execute", "i-none"}});
        QCOMPARE(element()->getFunctionValues(), (hash_t{{"execute", ""}}));
    }

    void two_functions_on_one_item_list_the_first_only() {
        database->add_element("e", "Lamp", 1, {{"b", "i-1"}, {"a", "i-1"}});
        const auto made = element();
        QCOMPARE(made->getFunctionIds(), (ids_t{{"i-1", {"a"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"a", "i-1"}, {"b", "i-1"}}));
        QCOMPARE(made->getFunctionValues(), (hash_t{{"a", "1"}, {"b", "1"}}));
    }

    void functions_without_an_item_are_filed_under_the_empty_id() {
        database->add_element("e", "Lamp", 1,
                              {{"a", QVariant()}, {"b", ""}, {"c", "i-1"}, {"d", " "}});
        const auto made = element();
        QCOMPARE(made->getFunctionIds(), (ids_t{{"", {"a"}}, {"i-1", {"c"}}, {" ", {"d"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"a", ""}, {"b", ""}, {"c", "i-1"}, {"d", " "}}));
        QCOMPARE(made->getFunctionValues(), (hash_t{{"a", ""}, {"b", ""}, {"c", "1"}, {"d", ""}}));
    }

    void a_scenario_has_one_function_execute_data() {
        QTest::addColumn<QString>("scenario");
        QTest::addColumn<QString>("value");
        QTest::newRow("executed") << "s-on"
                                  << "true";
        QTest::newRow("not executed") << "s-off"
                                      << "false";
        QTest::newRow("unknown to the realtime side") << "s-none"
                                                      << "";
    }
    void a_scenario_has_one_function_execute() {
        QFETCH(const QString, scenario);
        QFETCH(const QString, value);
        database->add_scenary("s-on", true);
        database->add_scenary("s-off", false);
        database->add_scenario_element("e", "Night", scenario, 0, {{"other", "i-1"}});
        const auto made = element();
        QCOMPARE(made->getTypeElement(), 8);
        QCOMPARE(made->getFunctionIds(), (ids_t{{scenario, {"execute"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"execute", scenario}}));
        QCOMPARE(made->getFunctionValues(), (hash_t{{"execute", value}}));
    }

    void the_flags_sign_decides_about_a_scenarios_functions_data() {
        QTest::addColumn<qint32>("flags");
        QTest::addColumn<bool>("mapped");
        QTest::newRow("zero") << 0 << false;
        QTest::newRow("positive") << std::numeric_limits<qint32>::max() << false;
        QTest::newRow("minus one") << -1 << true;
        QTest::newRow("top bit") << std::numeric_limits<qint32>::min() << true;
    }
    void the_flags_sign_decides_about_a_scenarios_functions() {
        QFETCH(const qint32, flags);
        database->add_scenary("s", true);
        database->add_scenario_element("e", "Night", "s", flags, {{"on", "i-1"}, {"off", "i-2"}});
        QFETCH(const bool, mapped);
        const hash_t values =
            mapped ? hash_t{{"on", "1"}, {"off", "2"}} : hash_t{{"execute", "true"}};
        QCOMPARE(element()->getFunctionValues(), values);
    }

    void negative_flags_change_nothing_for_other_types() {
        database->add_element("e", "Lamp", 1, {{"execute", "i-1"}}, -1);
        QCOMPARE(element()->getFunctionValues(), (hash_t{{"execute", "1"}}));
    }

    void populating_again_adds_and_never_overwrites() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        const auto made = element();
        database->tables().put("e", std::make_unique<fakes::objects::ps_object_element_t>(
                                        fakes::objects::ps_element_data_t{
                                            "Other", 1, 0, {{"a", "i-2"}, {"b", "i-2"}}}));
        kit::event_recorder_t events(made.get());
        database->store_item("i-1", "9");
        made->populateFunctions();
        QCOMPARE(made->getFunctionValues(), (hash_t{{"a", "1"}, {"b", "2"}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"a", "i-1"}, {"b", "i-2"}}));
        // "a" came first to i-2, so "b" is not listed there.
        QCOMPARE(made->getFunctionIds(), (ids_t{{"i-1", {"a"}}, {"i-2", {"a"}}}));
        QCOMPARE(made->getNameElement(), "Lamp");
        QCOMPARE(events.take(), QStringList());
    }

    void an_item_is_filed_in_three_independent_steps() {
        database->add_element("e", "Lamp", 1, {});
        const auto made = element();
        made->addIdItem("i", "f", "1");
        made->addIdItem("j", "f", "2");
        made->addIdItem("i", "g", "3");
        made->addIdItem("i", "f", "4");
        QCOMPARE(made->getFunctionIds(), (ids_t{{"i", {"f"}}, {"j", {"f"}}}));
        QCOMPARE(made->getFunctioName(), (hash_t{{"f", "i"}, {"g", "i"}}));
        QCOMPARE(made->getFunctionValues(), (hash_t{{"f", "1"}, {"g", "3"}}));
    }

    void init_reads_everything_again_and_announces_item_ids() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}, {"b", "i-2"}});
        const auto made = element();
        kit::event_recorder_t events(made.get());
        database->store_item("i-1", "9");
        made->init();
        QCOMPARE(events.take(), QStringList("value e [i-1,i-2] {a=9,b=2}"));
        database->add_element("e", "Blind", 2, {{"move", "i-2"}});
        made->init();
        QCOMPARE(events.take(), QStringList("value e [i-2] {move=2}"));
        QCOMPARE(made->getNameElement(), "Blind");
        QCOMPARE(made->getTypeElement(), 2);
        QCOMPARE(made->getFunctioName(), (hash_t{{"move", "i-2"}}));
    }

    void an_element_without_functions_announces_an_empty_load() {
        database->add_element("e", "Nothing", 1, {});
        const auto made = element();
        kit::event_recorder_t events(made.get());
        made->init();
        QCOMPARE(events.take(), QStringList("value e [] {}"));
    }

    void reset_empties_all_but_id_type_and_whether_anybody_has_a_grant() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        database->add_user("u", "alice");
        database->grant("u", "e", 3);
        const auto made = element();
        kit::event_recorder_t events(made.get());
        made->reset();
        QVERIFY(made->getPermission());
        QVERIFY(made->getPermissions().isEmpty());
        QCOMPARE(made->getIdElement(), "e");
        QCOMPARE(made->getTypeElement(), 1);
        QCOMPARE(made->getNameElement(), "");
        QVERIFY(!made->getNameElement().isNull());
        QVERIFY(made->getFunctionIds().isEmpty());
        QVERIFY(made->getFunctioName().isEmpty());
        QVERIFY(made->getFunctionValues().isEmpty());
        QCOMPARE(events.take(), QStringList());
    }

    void values_are_read_by_id() {
        database->add_scenary("s", true);
        const auto made = element();
        QCOMPARE(made->getItemsValue("i-1"), "1");
        QCOMPARE(made->getItemsValue(" "), "");
        QCOMPARE(made->getItemsValue("i-9"), "");
        QCOMPARE(made->getScenaryValue("s"), "true");
        QCOMPARE(made->getScenaryValue("i-1"), "");
    }

    void a_deleted_database_is_survived() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        const auto made = element();
        database.reset();
        kit::event_recorder_t events(made.get());
        made->populateFunctions();
        QCOMPARE(made->getFunctionValues(), (hash_t{{"a", "1"}}));
        QCOMPARE(made->getItemsValue("i-1"), "");
        QCOMPARE(made->getScenaryValue("s"), "");
        made->init();
        QVERIFY(made->getFunctionValues().isEmpty());
        QCOMPARE(events.take(), QStringList());
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_functions)
#include "tst_data_api_element_object_functions.moc"
