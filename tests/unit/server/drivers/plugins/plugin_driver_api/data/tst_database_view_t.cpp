#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/database_view_t.h"
#include "fakes/memory_database_t.h"

using interfaces::database_view_t;

class tst_database_view_t : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;

    database_view_t view() const { return database_view_t(database->get()); }

 private Q_SLOTS:
    void init() { database = std::make_unique<fakes::memory_database_t>(); }

    void elements_are_listed_in_key_order() {
        for (const char* id : {"e-3", "e-1", "e-2"}) {
            database->add_element(id, "name", 1, {});
        }
        QCOMPARE(view().element_ids(), (QStringList{"e-1", "e-2", "e-3"}));
        QVERIFY(view().has_element("e-1"));
        QVERIFY(!view().has_element("e-4"));
        QCOMPARE(view().element("e-4"), nullptr);
        QCOMPARE(view().element("e-2"), database->data()->getElements()->list("e-2"));
    }

    void a_clone_is_another_object_of_the_same_class() {
        database->add_scenario_element("e", "Night", "s");
        const auto clone = view().clone_element("e");
        QVERIFY(clone.get() != view().element("e"));
        QVERIFY(qobject_cast<const database::persistent::objects::psoe_scenario*>(clone.get()));
        QCOMPARE(clone->getName(), "Night");
        QCOMPARE(view().clone_element("none"), nullptr);
    }

    void a_thermostat_is_a_private_copy() {
        database->add_thermostat("t", {{"mode", "i-mode"}}, "i-temp", "i-win");
        const auto copy = view().thermostat("t");
        QVERIFY(copy.get() != database->data()->getThermo()->list("t"));
        QCOMPARE(copy->getIdWindowsContact(), "i-win");
        database->remove_thermostat("t");
        QCOMPARE(copy->getThermo()->getIdActual(), "i-temp");
        QCOMPARE(view().thermostat("t"), nullptr);
    }

    void item_values_are_looked_up_by_the_untrimmed_id() {
        database->add_item("i", "5");
        database->add_item(" i ", "6");
        database->add_item("  ", "7");
        QCOMPARE(view().item_value("i"), "5");
        QCOMPARE(view().item_value(" i "), "6");
        QCOMPARE(view().item_value("  "), "");
        QCOMPARE(view().item_value("i "), "");
        QCOMPARE(view().item_value(""), "");
        QCOMPARE(view().item_value("none"), "");
    }

    void scenario_values_are_words() {
        database->add_scenary("on", true);
        database->add_scenary("off", false);
        database->add_scenary(" ", true);
        database->add_scenary("on ", false);
        QCOMPARE(view().scenary_value("on"), "true");
        QCOMPARE(view().scenary_value("off"), "false");
        QCOMPARE(view().scenary_value("on "), "false");
        QCOMPARE(view().scenary_value(" "), "");
        QCOMPARE(view().scenary_value(""), "");
        QCOMPARE(view().scenary_value("none"), "");
    }

    void requests_reach_known_objects_only() {
        database->add_item("i", "0");
        database->add_scenary("s", false);
        QVERIFY(view().request_item("i", "1"));
        QVERIFY(!view().request_item("s", "1"));
        QVERIFY(view().request_scenary("s", true));
        QVERIFY(!view().request_scenary("i", true));
        QCOMPARE(database->item_requests, (QList<std::pair<QString, QString>>{{"i", "1"}}));
        QCOMPARE(database->scenary_requests, (QList<std::pair<QString, bool>>{{"s", true}}));
    }

    void users_and_grants_pass_through() {
        database->add_user("u-2", "alice");
        database->add_user("u-1", "bob");
        database->grant("u-1", "e", 3);
        database->grant("u-2", "e", -5);
        QCOMPARE(view().user_ids(true), (QStringList{"u-1", "u-2"}));
        QCOMPARE(view().usernames(true), (QStringList{"bob", "alice"}));
        QCOMPARE(view().usernames("v1", true), (QStringList{"bob", "alice"}));
        QCOMPARE(view().username("u-2"), "alice");
        QCOMPARE(view().username("u-3"), "");
        QCOMPARE(view().permission("e", "u-1"), 3);
        QCOMPARE(view().permission("e", "u-2"), -5);
        QCOMPARE(view().permission("other", "u-1"), 0);
    }

    void notifiers_are_the_databases() {
        QCOMPARE(view().persistent_notifier(), database->persistent());
        QCOMPARE(view().realtime_notifier(), database->realtime());
    }

    void a_database_that_is_gone_is_an_empty_one_data() {
        QTest::addColumn<bool>("deleted");
        QTest::newRow("never there") << false;
        QTest::newRow("deleted") << true;
    }
    void a_database_that_is_gone_is_an_empty_one() {
        QFETCH(const bool, deleted);
        database->add_element("e", "name", 1, {});
        database->add_item("i", "1");
        database->add_scenary("s", true);
        database->add_user("u", "alice");
        database->grant("u", "e", 3);
        const database_view_t gone(deleted ? database->get() : nullptr);
        database.reset();
        QVERIFY(gone.element_ids().isEmpty());
        QVERIFY(!gone.has_element("e"));
        QCOMPARE(gone.element("e"), nullptr);
        QCOMPARE(gone.clone_element("e"), nullptr);
        QCOMPARE(gone.thermostat("t"), nullptr);
        QCOMPARE(gone.item_value("i"), "");
        QCOMPARE(gone.scenary_value("s"), "");
        QVERIFY(!gone.request_item("i", "1"));
        QVERIFY(!gone.request_scenary("s", true));
        QVERIFY(gone.user_ids(true).isEmpty());
        QVERIFY(gone.usernames(true).isEmpty());
        QVERIFY(gone.usernames("v1", true).isEmpty());
        QCOMPARE(gone.username("u"), "");
        QCOMPARE(gone.permission("e", "u"), 0);
        QCOMPARE(gone.persistent_notifier(), nullptr);
        QCOMPARE(gone.realtime_notifier(), nullptr);
    }
};

QTEST_GUILESS_MAIN(tst_database_view_t)
#include "tst_database_view_t.moc"
