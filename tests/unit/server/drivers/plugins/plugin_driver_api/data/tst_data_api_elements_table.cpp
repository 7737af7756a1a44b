#include <QSignalSpy>
#include <QTest>
#include <memory>

#include "fakes/memory_database_t.h"
#include "fakes/recording_logger_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_element_object_t;
using interfaces::data_api_elements_t;

/// Which elements the collection holds, and what it says when the table changes.
class tst_data_api_elements_table : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_elements_t> elements;
    std::unique_ptr<kit::event_recorder_t> events;

    QStringList ids() {
        QStringList keys = elements->get_data_api_elements().keys();
        keys.sort();
        return keys;
    }
    /// What was said, with what was queued meanwhile.
    QStringList said() { return events->take_settled(); }
    void add(const QString& _id, int _type = 1) {
        database->add_element(_id, "Name " + _id, _type, {{"execute", "i"}});
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "1");
        elements = std::make_unique<data_api_elements_t>(database->get(), nullptr);
        events = std::make_unique<kit::event_recorder_t>(elements.get());
    }
    void cleanup() {
        events.reset();
        elements.reset();
    }

    void it_is_created_empty_and_enabled() {
        add("e-1");
        const data_api_elements_t made(database->get(), this);
        QVERIFY(made.getEnabled());
        QCOMPARE(made.getName(), "data");
        QCOMPARE(made.parent(), this);
        QVERIFY(ids().isEmpty());
        QCOMPARE(said(), QStringList());
    }

    void loading_announces_each_element_in_key_order_then_the_acl() {
        add("e-2");
        add("e-1");
        add("e-3", 11);
        elements->init();
        QCOMPARE(said(), (QStringList{"value e-1 [i]", "value e-2 [i]", "acl"}));
        QCOMPARE(ids(), (QStringList{"e-1", "e-2"}));
    }

    void loading_an_empty_database_announces_the_acl_only() {
        elements->init();
        QCOMPARE(said(), QStringList("acl"));
    }

    void elements_are_the_collections_children() {
        add("e");
        elements->init();
        const auto element = elements->get_data_api_element_object("e");
        QCOMPARE(element->parent(), elements.get());
        QCOMPARE(elements->get_data_api_elements().value("e"), element.data());
        QVERIFY(elements->get_data_api_element_object("none").isNull());
        events.reset();
        elements.reset();
        QVERIFY(element.isNull());
    }

    void hidden_types_are_not_added_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("shown");
        for (const int type : {-2, 0, 1, 8, 10, 12, 13, 15, 16, 17, 20, 21, 1000}) {
            QTest::newRow(qPrintable(QString("shown %1").arg(type))) << type << true;
        }
        for (const int type : {-1, 11, 14, 18, 19}) {
            QTest::newRow(qPrintable(QString("hidden %1").arg(type))) << type << false;
        }
    }
    void hidden_types_are_not_added() {
        QFETCH(const int, type);
        QFETCH(const bool, shown);
        add("e", type);
        elements->addElement("e");
        QCOMPARE(ids(), shown ? QStringList("e") : QStringList());
        QCOMPARE(said().isEmpty(), !shown);
    }

    void an_element_is_in_the_table_and_connected_when_it_is_announced() {
        add("e");
        database->add_user("u", "alice");
        database->grant("u", "e", 3);
        bool found = false;
        bool in_acl = true;
        connect(elements.get(), &data_api_elements_t::value_change, this, [&] {
            found = !elements->get_data_api_element_object("e").isNull();
            in_acl = elements->get_data_api_elements_acl().contains("alice");
        });
        elements->addElement("e");
        QVERIFY(found);
        QVERIFY(!in_acl);
        QVERIFY(elements->get_data_api_elements_acl().contains("alice"));
    }

    void an_element_that_is_there_is_read_again_and_stays_the_same_object() {
        add("e");
        elements->init();
        said();
        const auto before = elements->get_data_api_element_object("e");
        database->add_element("e", "Renamed", 2, {});
        elements->addElement("e");
        QCOMPARE(elements->get_data_api_element_object("e"), before);
        QCOMPARE(elements->findChildren<data_api_element_object_t*>().size(), 1);
        QCOMPARE(before->getNameElement(), "Renamed");
        // Said by the element, so it comes through the queue and once.
        QCOMPARE(events->take(), QStringList());
        QCOMPARE(said(), QStringList("value e []"));
    }

    void removing_takes_it_out_first_and_deletes_it_later() {
        add("e");
        elements->init();
        said();
        QPointer<data_api_element_object_t> element = elements->get_data_api_element_object("e");
        bool known = true;
        connect(elements.get(), &data_api_elements_t::acl_changes, this,
                [&] { known = !elements->get_data_api_element_object("e").isNull(); });
        elements->removeElement("e");
        QVERIFY(!known);
        QVERIFY(!element.isNull());
        QCOMPARE(events->take(), QStringList("acl"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(element.isNull());
        elements->removeElement("e");
        elements->removeElement("none");
        QCOMPARE(said(), QStringList());
    }

    void adding_what_is_hidden_or_gone_removes_it() {
        add("e-1");
        add("e-2");
        elements->init();
        said();
        add("e-1", 14);
        database->remove_element("e-2");
        elements->addElement("e-1");
        elements->addElement("e-2");
        elements->addElement("e-3");
        QVERIFY(ids().isEmpty());
        QCOMPARE(said(), (QStringList{"acl", "acl"}));
    }

    void reset_of_an_empty_collection_says_exactly_two_things() {
        QSignalSpy spy(elements.get(), &data_api_elements_t::on_reset_api_elements);
        elements->reset();
        QCOMPARE(said(), (QStringList{"reset true []", "reset false []"}));
        QCOMPARE(spy.size(), 2);
    }

    void reset_announces_the_old_ids_removes_each_and_ends_empty() {
        add("e-1");
        add("e-2");
        elements->init();
        said();
        elements->reset();
        QCOMPARE(said(), (QStringList{"reset true [e-1,e-2]", "acl", "acl", "reset false []"}));
        QVERIFY(ids().isEmpty());
        QVERIFY(elements->get_data_api_elements_acl().isEmpty());
    }

    void enabling_resets_first_loads_and_sets_the_flag_last() {
        add("e");
        QList<bool> flags;
        const auto note = [&] { flags.append(elements->getEnabled()); };
        connect(elements.get(), &data_api_elements_t::on_reset_api_elements, this, note);
        connect(elements.get(), &data_api_elements_t::value_change, this, note);
        elements->setEnabled(false);
        QVERIFY(!elements->getEnabled());
        QCOMPARE(said(), (QStringList{"reset true []", "reset false []"}));
        QCOMPARE(flags, (QList<bool>{true, true}));
        flags.clear();
        elements->setEnabled(true);
        QVERIFY(elements->getEnabled());
        QCOMPARE(said(), (QStringList{"reset true []", "reset false []", "value e [i]", "acl"}));
        QCOMPARE(flags, (QList<bool>{false, false, false}));
        elements->setEnabled(true);
        QCOMPARE(said(),
                 (QStringList{"reset true [e]", "acl", "reset false []", "value e [i]", "acl"}));
    }

    void reinit_follows_the_database_without_a_reset() {
        add("e-1");
        add("e-2");
        elements->init();
        said();
        database->remove_element("e-1");
        add("e-3");
        elements->reinit();
        // The new one at once, the known one through the queue.
        QCOMPARE(said(), (QStringList{"acl", "value e-3 [i]", "acl", "value e-2 [i]"}));
        QCOMPARE(ids(), (QStringList{"e-2", "e-3"}));
    }

    void elements_are_visited_in_table_order() {
        for (int i = 0; i < 20; ++i) {
            add(QString("e-%1").arg(i));
        }
        elements->init();
        QStringList visited;
        elements->for_each_element([&](const QString& _id, data_api_element_object_t& _element) {
            QCOMPARE(_element.getIdElement(), _id);
            visited.append(_id);
        });
        QCOMPARE(visited, elements->get_data_api_elements().keys());
    }

    void the_users_pass_through() {
        database->add_user("u-1", "bob");
        database->add_user("u-2", "alice");
        QCOMPARE(elements->get_api_usernames(true), (QStringList{"bob", "alice"}));
        QCOMPARE(elements->get_api_usernames("v1", true), (QStringList{"bob", "alice"}));
        QCOMPARE(elements->get_api_users(true), (QStringList{"u-1", "u-2"}));
    }

    void destruction_is_logged() {
        const fakes::recording_logger_t logger;
        events.reset();
        elements.reset();
        QCOMPARE(logger.lines().size(), 1);
        QVERIFY(logger.contains("Destructor ~data_api_elements_t", 4, "~data_api_elements_t",
                                "server/drivers/plugins/plugin_driver_api/data/data_api_elements_t",
                                31));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_elements_table)
#include "tst_data_api_elements_table.moc"
