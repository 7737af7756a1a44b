#include <QTest>
#include <memory>

#include "fakes/memory_database_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_elements_t;
using acl_t = data_api_elements_t::acl_t;

/// Each user's words on the elements, as the collection keeps and announces them.
class tst_data_api_elements_acl : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_elements_t> elements;
    std::unique_ptr<kit::event_recorder_t> events;

    QStringList said() { return events->take_settled(); }
    static QStringList sorted(QStringList _events) {
        _events.sort();
        return _events;
    }
    acl_t acl() { return elements->get_data_api_elements_acl(); }
    const base::small_table_t<QString>& words(const QString& _element) {
        return elements->get_data_api_element_object(_element)->words();
    }
    void users_changed() { Q_EMIT database->persistent()->onPersistentChangeUsers({}); }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_element("e-1", "One", 1, {});
        database->add_element("e-2", "Two", 1, {});
        database->add_user("u-alice", "alice");
        database->add_user("u-bob", "bob");
        database->grant("u-alice", "e-1", 1);
        database->grant("u-alice", "e-2", 2);
        database->grant("u-bob", "e-2", 3);
        elements = std::make_unique<data_api_elements_t>(database->get(), nullptr);
        elements->init();
        QCoreApplication::processEvents();
        events = std::make_unique<kit::event_recorder_t>(elements.get());
    }
    void cleanup() {
        events.reset();
        elements.reset();
    }

    void loading_fills_the_table_and_announces_no_word() {
        QCOMPARE(acl(), (acl_t{{"alice", {{"e-1", "readwrite"}, {"e-2", "readwrite"}}},
                               {"bob", {{"e-1", "deny"}, {"e-2", "readwrite"}}}}));
        elements->setEnabled(false);
        said();
        elements->init();
        // What an element says while it is made is not passed on, bob's denial neither.
        QCOMPARE(said(), (QStringList{"value e-1 []", "value e-2 []", "acl"}));
    }

    void elements_with_equal_rights_share_their_words() {
        database->add_element("e-3", "Three", 1, {});
        database->grant("u-alice", "e-3", 3);
        database->grant("u-bob", "e-3", 3);
        elements->addElement("e-3");
        elements->addElement("e-2");
        QVERIFY(words("e-2").is_shared_with(words("e-3")));
        QVERIFY(!words("e-1").is_shared_with(words("e-3")));
        database->grant("u-bob", "e-3", 0);
        elements->addElement("e-3");
        QCOMPARE(acl()["bob"],
                 (QHash<QString, QString>{{"e-1", "deny"}, {"e-2", "readwrite"}, {"e-3", "deny"}}));
    }

    void removing_an_element_withdraws_every_word_on_it() {
        elements->removeElement("e-1");
        const QStringList all = said();
        QCOMPARE(all.constLast(), "acl");
        QCOMPARE(sorted(all), (QStringList{"acl", "remove alice e-1", "remove bob e-1"}));
        QCOMPARE(acl(),
                 (acl_t{{"alice", {{"e-2", "readwrite"}}}, {"bob", {{"e-2", "readwrite"}}}}));
    }

    void reset_withdraws_everything_and_empties_the_table() {
        elements->reset();
        const QStringList all = said();
        QCOMPARE(all.constFirst(), "reset true [e-1,e-2]");
        QCOMPARE(all.constLast(), "reset false []");
        QCOMPARE(sorted(all), (QStringList{"acl", "acl", "remove alice e-1", "remove alice e-2",
                                           "remove bob e-1", "remove bob e-2", "reset false []",
                                           "reset true [e-1,e-2]"}));
        QVERIFY(acl().isEmpty());
    }

    void a_type_that_becomes_hidden_withdraws_the_element() {
        database->add_element("e-1", "One", 11, {});
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e-1");
        QCOMPARE(events->take(), QStringList());
        QCOMPARE(sorted(said()), (QStringList{"acl", "remove alice e-1", "remove bob e-1"}));
        QVERIFY(elements->get_data_api_element_object("e-1").isNull());
    }

    void a_new_user_is_announced_once() {
        database->add_user("u-carl", "carl");
        database->grant("u-carl", "e-2", 1);
        users_changed();
        QCOMPARE(events->take(), QStringList());
        // The collection's own signal first, then what the elements said, queued; one each.
        const QStringList all = said();
        QCOMPARE(all.constFirst(), "acl");
        QCOMPARE(sorted(all), (QStringList{"acl", "add carl e-2 readwrite", "remove carl e-1"}));
        QCOMPARE(acl().value("carl"),
                 (QHash<QString, QString>{{"e-1", "deny"}, {"e-2", "readwrite"}}));
        Q_EMIT database->persistent()->onPersistentChangeUser({}, "u-carl");
        QCOMPARE(said(), QStringList("acl"));
    }

    void a_removed_user_is_withdrawn_but_stays_in_the_table() {
        database->remove_user("u-bob");
        Q_EMIT database->persistent()->onPersistentChangeUser({}, "u-bob");
        QCOMPARE(said(), (QStringList{"acl", "remove bob e-2"}));
        // Words are only ever inserted; filling the table anew drops them.
        QCOMPARE(acl().value("bob").value("e-2"), "readwrite");
        elements->populate_acl();
        QVERIFY(!acl().contains("bob"));
        QCOMPARE(acl().value("alice").size(), 2);
        QCOMPARE(said(), QStringList());
    }

    void a_changed_grant_waits_for_the_change_of_its_element() {
        database->grant("u-alice", "e-1", 0);
        database->grant("u-bob", "e-1", 3);
        users_changed();
        QCOMPARE(said(), QStringList("acl"));
        QCOMPARE(acl().value("alice").value("e-1"), "readwrite");
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e-1");
        QCOMPARE(said(), (QStringList{"remove alice e-1", "value e-1 []"}));
        QCOMPARE(acl().value("alice").value("e-1"), "deny");
        QCOMPARE(acl().value("bob").value("e-1"), "readwrite");
    }

    void filling_in_one_element_replaces_its_words_silently() {
        elements->get_data_api_element_object("e-1")->add_acl("carl");
        QVERIFY(!acl().contains("carl"));
        elements->populate_acl("e-1");
        QCOMPARE(acl().value("carl").value("e-1"), "deny");
        QCOMPARE(said(), QStringList("remove carl e-1"));
        elements->populate_acl("none");
        QCOMPARE(said(), QStringList());
    }

    void relays_pass_the_arguments_on() {
        const auto element = elements->get_data_api_element_object("e-1");
        Q_EMIT element->add_acl_element("u", "x", "some word");
        Q_EMIT element->remove_acl_element("v", "y");
        Q_EMIT element->value_change("z", {{"f", "1"}}, {"f", "g"});
        QCOMPARE(events->take(), QStringList());
        QCOMPARE(said(), (QStringList{"add u x some word", "remove v y", "value z [f,g]"}));
    }

    void a_withdrawal_said_before_the_removal_still_arrives() {
        const auto element = elements->get_data_api_element_object("e-1");
        Q_EMIT element->remove_acl_element("alice", "e-1");
        elements->removeElement("e-1");
        events->take();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(element.isNull());
        QCOMPARE(said(), QStringList("remove alice e-1"));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_elements_acl)
#include "tst_data_api_elements_acl.moc"
