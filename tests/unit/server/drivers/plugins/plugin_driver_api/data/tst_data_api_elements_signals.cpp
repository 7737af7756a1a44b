#include <QTest>
#include <memory>

#include "fakes/memory_database_t.h"
#include "kit/queued_calls_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/receivers.h"

using interfaces::data_api_elements_t;

/// The collection's connections to the database and to its elements.
class tst_data_api_elements_signals : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_elements_t> elements;
    std::unique_ptr<kit::event_recorder_t> events;

    /// Connections of the seven signals the collection listens to.
    QList<int> connections() const {
        const QObject* persistent = database->persistent();
        const QObject* realtime = database->realtime();
        const auto count = kit::receivers;
        return {
            count(persistent, SIGNAL(onPersistentChangeDatabase(const QJsonObject&))),
            count(persistent, SIGNAL(onPersistentChangeElements(const QJsonObject&))),
            count(persistent,
                  SIGNAL(onPersistentChangeElement(const QJsonObject&, const QString&))),
            count(persistent, SIGNAL(onPersistentChangeUsers(const QJsonObject&))),
            count(persistent, SIGNAL(onPersistentChangeUser(const QJsonObject&, const QString&))),
            count(realtime, SIGNAL(onRealtimeChangeDatabase(const QJsonObject&))),
            count(realtime, SIGNAL(onRealtimeChangeItems(const QJsonObject&)))};
    }
    /// What the collection says from now on, each with whether it listens at that moment.
    std::shared_ptr<QStringList> listening_at_each_signal() {
        const auto seen = std::make_shared<QStringList>();
        const auto note = [this, seen](const char* _what) {
            const bool all = connections() == one;
            seen->append(QString(_what) + (all ? " 1" : connections() == none ? " 0" : " some"));
        };
        connect(elements.get(), &data_api_elements_t::value_change, this,
                [note] { note("value"); });
        connect(elements.get(), &data_api_elements_t::acl_changes, this, [note] { note("acl"); });
        connect(elements.get(), &data_api_elements_t::on_reset_api_elements, this,
                [note] { note("reset"); });
        return seen;
    }
    void notify(int _signal) {
        switch (_signal) {
            case 0:
                return Q_EMIT database->persistent()->onPersistentChangeDatabase({});
            case 1:
                return Q_EMIT database->persistent()->onPersistentChangeElements({});
            case 2:
                return Q_EMIT database->persistent()->onPersistentChangeElement({}, "e");
            case 3:
                return Q_EMIT database->persistent()->onPersistentChangeUsers({});
            case 4:
                return Q_EMIT database->persistent()->onPersistentChangeUser({}, "u");
            case 5:
                return Q_EMIT database->realtime()->onRealtimeChangeItems({});
            default:
                return Q_EMIT database->realtime()->onRealtimeChangeDatabase({});
        }
    }
    const QList<int> none = QList<int>(7, 0);
    const QList<int> one = QList<int>(7, 1);

    QStringList said() { return events->take_settled(); }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "1");
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        database->add_user("u", "alice");
        database->grant("u", "e", 3);
        elements = std::make_unique<data_api_elements_t>(database->get(), nullptr);
        events = std::make_unique<kit::event_recorder_t>(elements.get());
    }
    void cleanup() {
        events.reset();
        elements.reset();
    }

    void enabling_twice_and_disabling_once_leaves_no_connection() {
        QCOMPARE(connections(), none);
        elements->init_event(true);
        elements->init_event(true);
        QCOMPARE(connections(), one);
        elements->init_event(false);
        QCOMPARE(connections(), none);
    }

    void loading_listens_once_and_reset_stops() {
        elements->init();
        elements->init();
        QCOMPARE(connections(), one);
        elements->reset();
        QCOMPARE(connections(), none);
        elements->setEnabled(true);
        QCOMPARE(connections(), one);
        elements->setEnabled(false);
        QCOMPARE(connections(), none);
    }

    void each_notification_comes_through_the_queue_data() {
        QTest::addColumn<int>("signal");
        const char* const names[] = {"database", "elements", "element",          "users",
                                     "user",     "values",   "realtime database"};
        for (int signal = 0; signal < 7; ++signal) {
            QTest::newRow(names[signal]) << signal;
        }
    }
    void each_notification_comes_through_the_queue() {
        QFETCH(const int, signal);
        elements->init_event(true);
        const kit::queued_calls_t calls(elements.get());
        notify(signal);
        QCOMPARE(calls.count, 0);
        QCoreApplication::processEvents();
        QCOMPARE(calls.count, 1);
    }

    void it_listens_after_the_elements_and_before_the_load_is_announced() {
        const auto seen = listening_at_each_signal();
        elements->init();
        QCOMPARE(*seen, (QStringList{"value 0", "acl 1"}));
    }

    void reset_stops_listening_before_anything_is_announced() {
        elements->init();
        const auto seen = listening_at_each_signal();
        elements->reset();
        QCOMPARE(*seen, (QStringList{"reset 0", "acl 0", "reset 0"}));
    }

    void without_its_events_the_elements_still_listen() {
        elements->init();
        said();
        elements->init_event(false);
        Q_EMIT database->persistent()->onPersistentChangeUsers({});
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e");
        QCOMPARE(said(), QStringList());
        database->set_item("i", "9");
        QCOMPARE(said(), QStringList("value e [execute]"));
    }

    void one_value_change_is_passed_on_once_and_without_values() {
        elements->init();
        elements->addElement("e");
        elements->check_permission();
        said();
        database->set_item("i", "9");
        QCOMPARE(said(), QStringList("value e [execute]"));
        QCOMPARE(elements->get_data_api_element_object("e")->getFunctionValues(),
                 (QHash<QString, QString>{{"execute", "9"}}));
    }

    void a_new_element_in_the_database_is_added() {
        elements->init();
        said();
        database->add_element("e-2", "Other", 1, {});
        Q_EMIT database->persistent()->onPersistentChangeElement({{"key", "e-3"}}, "e-2");
        QCOMPARE(events->take(), QStringList());
        QCOMPARE(said(), QStringList("value e-2 []"));
        QVERIFY(!elements->get_data_api_element_object("e-2").isNull());
    }

    void a_changed_element_is_read_again_without_a_second_object() {
        elements->init();
        said();
        const auto before = elements->get_data_api_element_object("e");
        database->add_element("e", "Renamed", 1, {{"execute", "i"}});
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e");
        QCOMPARE(said(), QStringList("value e [i]"));
        QCOMPARE(elements->get_data_api_element_object("e"), before);
        QCOMPARE(before->getNameElement(), "Renamed");
        const auto children = elements->findChildren<interfaces::data_api_element_object_t*>();
        QCOMPARE(children.size(), 1);
    }

    void an_element_gone_from_the_database_is_removed() {
        elements->init();
        said();
        database->remove_element("e");
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e");
        QCOMPARE(said(), (QStringList{"remove alice e", "acl"}));
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e");
        QCOMPARE(said(), QStringList());
    }

    void a_removed_element_hears_nothing_more() {
        elements->init();
        elements->removeElement("e");
        said();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        database->set_item("i", "9");
        QCOMPARE(said(), QStringList());
        QCOMPARE(kit::receivers(database->realtime(),
                                SIGNAL(onRealtimeChangeItem(const QJsonObject&, const QString&))),
                 0);
    }

    void reinit_neither_begins_to_listen_nor_stops() {
        elements->setEnabled(false);
        elements->reinit();
        QCOMPARE(connections(), none);
        elements->init();
        elements->reinit();
        QCOMPARE(connections(), one);
    }

    void a_deleted_database_is_survived_by_every_operation() {
        elements->init();
        said();
        database.reset();
        elements->init();
        QCOMPARE(said(), QStringList("acl"));
        elements->check_permission();
        QCOMPARE(said(), (QStringList{"acl", "remove alice e"}));
        elements->init_event(true);
        elements->init_event(false);
        elements->populate_acl();
        QVERIFY(elements->get_api_usernames(true).isEmpty());
        QVERIFY(elements->get_api_usernames("v1", true).isEmpty());
        QVERIFY(elements->get_api_users(true).isEmpty());
        elements->onPersistentChangeUser({}, "u");
        elements->addElement("other");
        elements->onPersistentChangeElement({}, "e");
        QVERIFY(elements->get_data_api_elements().isEmpty());
        elements->reinit();
        elements->setEnabled(true);
        elements->reset();
        QVERIFY(elements->get_data_api_elements().isEmpty());
    }

    void without_a_database_it_is_empty() {
        data_api_elements_t orphan(nullptr, nullptr);
        const kit::event_recorder_t recorder(&orphan);
        orphan.setEnabled(true);
        QVERIFY(orphan.getEnabled());
        QVERIFY(orphan.get_data_api_elements().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_data_api_elements_signals)
#include "tst_data_api_elements_signals.moc"
