#include <QTest>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"
#include "fakes/memory_database_t.h"
#include "kit/queued_calls_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/receivers.h"

using interfaces::data_api_element_object_t;

/// When an element listens to the database.
class tst_data_api_element_object_events : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_element_object_t> element;

    void load() {
        element = std::make_unique<data_api_element_object_t>(database->get(), "e", nullptr);
    }
    /// Connections of the three signals an element listens to.
    QList<int> connections() const {
        return {kit::receivers(database->realtime(),
                               SIGNAL(onRealtimeChangeItem(const QJsonObject&, const QString&))),
                kit::receivers(database->realtime(), SIGNAL(onRealtimeChangeScenaryObjects(
                                                         const QJsonObject&, const QString&))),
                kit::receivers(database->persistent(), SIGNAL(onPersistentStatusThermo(
                                                           const QJsonObject&, const QString&)))};
    }
    /// Writes down each signal of the element and whether it listens at that moment.
    void note_signals(QStringList* _seen) {
        const auto note = [this, _seen](const QString& _what) {
            _seen->append(_what + ' ' + QString::number(connections().constFirst()));
        };
        connect(element.get(), &data_api_element_object_t::add_acl_element, this,
                [note](const QString& _user) { note("add " + _user); });
        connect(element.get(), &data_api_element_object_t::remove_acl_element, this,
                [note](const QString& _user) { note("remove " + _user); });
        connect(element.get(), &data_api_element_object_t::value_change, this,
                [note] { note("value"); });
    }
    const QList<int> none{0, 0, 0};
    const QList<int> one{1, 1, 1};

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "1");
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        database->add_user("u-alice", "alice");
        database->add_user("u-bob", "bob");
    }
    void cleanup() { element.reset(); }

    void it_listens_when_any_user_has_a_grant_data() {
        QTest::addColumn<int>("alice");
        QTest::addColumn<int>("bob");
        QTest::addColumn<bool>("listens");
        QTest::newRow("nobody") << 0 << 0 << false;
        QTest::newRow("negative only") << -1 << -3 << false;
        QTest::newRow("read") << 1 << 0 << true;
        QTest::newRow("write only") << 0 << 2 << true;
        QTest::newRow("another bit only") << 4 << 0 << true;
        QTest::newRow("a negative one after a grant") << 1 << -1 << true;
        QTest::newRow("both") << 3 << 3 << true;
    }
    void it_listens_when_any_user_has_a_grant() {
        QFETCH(const int, alice);
        QFETCH(const int, bob);
        QFETCH(const bool, listens);
        database->grant("u-alice", "e", alice);
        database->grant("u-bob", "e", bob);
        load();
        QCOMPARE(connections(), listens ? one : none);
        QCOMPARE(element->getPermission(), listens);
    }

    void with_no_entitled_user_it_does_not_follow_a_value() {
        load();
        database->set_item("i", "9");
        QCoreApplication::processEvents();
        QCOMPARE(element->getFunctionValues().value("execute"), "1");
    }

    void enabling_twice_and_disabling_once_leaves_no_connection() {
        load();
        element->init_event(true);
        element->init_event(true);
        QCOMPARE(connections(), one);
        element->init_event(false);
        QCOMPARE(connections(), none);
        element->init_event(false);
        element->init_event(true);
        QCOMPARE(connections(), one);
    }

    void a_connection_that_was_cut_from_outside_is_made_again_alone_data() {
        QTest::addColumn<QList<bool>>("cut");
        QTest::newRow("item") << QList<bool>{true, false, false};
        QTest::newRow("scenario") << QList<bool>{false, true, false};
        QTest::newRow("thermostat") << QList<bool>{false, false, true};
        QTest::newRow("two") << QList<bool>{true, false, true};
        QTest::newRow("all") << QList<bool>{true, true, true};
    }
    void a_connection_that_was_cut_from_outside_is_made_again_alone() {
        QFETCH(const QList<bool>, cut);
        load();
        element->init_event(true);
        const QObject* const realtime = database->realtime();
        if (cut[0]) {
            QVERIFY(realtime->disconnect(
                SIGNAL(onRealtimeChangeItem(const QJsonObject&, const QString&)), element.get()));
        }
        if (cut[1]) {
            QVERIFY(realtime->disconnect(
                SIGNAL(onRealtimeChangeScenaryObjects(const QJsonObject&, const QString&)),
                element.get()));
        }
        if (cut[2]) {
            QVERIFY(database->persistent()->disconnect(element.get()));
        }
        QCOMPARE(connections(), QList<int>({!cut[0], !cut[1], !cut[2]}));
        element->init_event(true);
        QCOMPARE(connections(), one);
        element->init_event(false);
        QCOMPARE(connections(), none);
    }

    void loading_again_keeps_one_connection_each() {
        database->grant("u-alice", "e", 3);
        load();
        element->init();
        element->populatePermission();
        element->update_permission();
        QCOMPARE(connections(), one);
    }

    void notifications_are_queued() {
        database->grant("u-alice", "e", 3);
        load();
        database->set_item("i", "9");
        QCOMPARE(element->getFunctionValues().value("execute"), "1");
        QCoreApplication::processEvents();
        QCOMPARE(element->getFunctionValues().value("execute"), "9");
    }

    void each_notification_comes_through_the_queue_data() {
        QTest::addColumn<int>("signal");
        QTest::newRow("item") << 0;
        QTest::newRow("scenario") << 1;
        QTest::newRow("thermostat") << 2;
    }
    void each_notification_comes_through_the_queue() {
        QFETCH(const int, signal);
        load();
        element->init_event(true);
        const kit::queued_calls_t calls(element.get());
        if (signal == 0) {
            Q_EMIT database->realtime()->onRealtimeChangeItem({}, "i");
        } else if (signal == 1) {
            Q_EMIT database->realtime()->onRealtimeChangeScenaryObjects({}, "s");
        } else {
            Q_EMIT database->persistent()->onPersistentStatusThermo({}, "t");
        }
        QCOMPARE(calls.count, 0);
        QCoreApplication::processEvents();
        QCOMPARE(calls.count, 1);
    }

    void it_listens_after_the_first_grant_is_announced() {
        load();
        QStringList seen;
        note_signals(&seen);
        database->add_user("u-carl", "carl");
        database->grant("u-carl", "e", 1);
        element->update_permission();
        QCOMPARE(seen, QStringList("add carl 0"));
        QCOMPARE(connections(), one);
    }

    void reading_everything_again_stops_listening_first() {
        database->grant("u-alice", "e", 3);
        load();
        QStringList seen;
        note_signals(&seen);
        database->add_user("u-carl", "carl");
        element->init();
        QCOMPARE(seen, (QStringList{"remove carl 0", "value 1"}));
    }

    void it_listens_until_the_last_words_are_withdrawn() {
        database->grant("u-alice", "e", 3);
        load();
        QStringList seen;
        note_signals(&seen);
        database->remove_user("u-alice");
        database->remove_user("u-bob");
        element->update_permission();
        QCOMPARE(seen, QStringList("remove alice 1"));
        QCOMPARE(connections(), none);
    }

    void it_stops_and_starts_listening_with_the_fresh_grants() {
        database->grant("u-alice", "e", 3);
        load();
        database->grant("u-alice", "e", 0);
        element->update_permission();
        QCOMPARE(connections(), none);
        database->grant("u-bob", "e", 2);
        element->update_permission();
        QCOMPARE(connections(), one);
        database->remove_user("u-bob");
        element->update_permission();
        QCOMPARE(connections(), none);
    }

    void reset_stops_listening() {
        database->grant("u-alice", "e", 3);
        load();
        element->reset();
        QCOMPARE(connections(), none);
    }

    void an_element_that_left_the_database_stops_listening_when_read_again() {
        database->grant("u-alice", "e", 3);
        load();
        database->remove_element("e");
        element->init();
        QCOMPARE(connections(), none);
    }

    void deleting_the_element_disconnects_it() {
        database->grant("u-alice", "e", 3);
        load();
        database->set_item("i", "9");
        element.reset();
        QCOMPARE(connections(), none);
        QCoreApplication::processEvents();
    }

    void a_deleted_database_is_survived() {
        database->grant("u-alice", "e", 3);
        load();
        database.reset();
        element->init_event(true);
        element->init_event(false);
        element->init_event(true);
        element->populatePermission();
        element->reset();
        QVERIFY(element->getFunctionValues().isEmpty());
    }

    void without_a_database_it_is_empty() {
        const data_api_element_object_t orphan(nullptr, "e", nullptr);
        QCOMPARE(orphan.getTypeElement(), -1);
        QVERIFY(orphan.getFunctionValues().isEmpty());
        QVERIFY(!orphan.getPermission());
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_events)
#include "tst_data_api_element_object_events.moc"
