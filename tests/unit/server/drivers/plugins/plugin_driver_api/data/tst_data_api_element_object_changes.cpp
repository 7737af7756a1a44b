#include <QTest>
#include <QThread>
#include <memory>

#include "fakes/memory_database_t.h"
#include "fakes/recording_logger_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_element_object_t;
using hash_t = QHash<QString, QString>;

namespace {
constexpr const char* source =
    "server/drivers/plugins/plugin_driver_api/data/data_api_element_object_t";
}

/// Receives a value change through a queued connection made from the signature.
class change_receiver_t : public QObject {
    Q_OBJECT

 public Q_SLOTS:
    void take(const QString& _id, QHash<QString, QString> _values, const QStringList& _functions) {
        id = _id;
        values = _values;
        functions = _functions;
        thread = QThread::currentThread();
        thread->quit();
    }

 public:
    QString id;
    hash_t values;
    QStringList functions;
    QThread* thread = nullptr;
};

/// How an element follows changed values.
class tst_data_api_element_object_changes : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_element_object_t> element;
    std::unique_ptr<kit::event_recorder_t> events;
    std::unique_ptr<fakes::recording_logger_t> logger;

    void load() {
        element = std::make_unique<data_api_element_object_t>(database->get(), "e", nullptr);
        element->init_event(true);
        events = std::make_unique<kit::event_recorder_t>(element.get());
    }
    QStringList said() { return events->take_settled(); }
    bool logged(const QString& _message, int _line) const {
        return logger->contains(_message, 6, "update_value", source, _line);
    }

 private Q_SLOTS:
    void init() {
        logger = std::make_unique<fakes::recording_logger_t>();
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i-1", "1");
        database->add_item("i-2", "2");
        database->add_scenary("s", false);
    }
    void cleanup() {
        events.reset();
        element.reset();
        database.reset();
        logger.reset();
    }

    void a_changed_item_updates_its_function_and_is_logged() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}, {"b", "i-2"}});
        load();
        database->set_item("i-1", "9");
        QCOMPARE(element->getFunctionValues().value("a"), "1");
        QCOMPARE(said(), QStringList("value e [a] {a=9,b=2}"));
        QCOMPARE(element->getFunctionValues(), (hash_t{{"a", "9"}, {"b", "2"}}));
        QCOMPARE(logger->lines().size(), 1);
        QVERIFY(logged("Update element Lamp item: i-1", 431));
    }

    void an_item_without_a_function_is_logged_twice_and_not_announced() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        load();
        database->set_item("i-2", "9");
        QCOMPARE(said(), QStringList());
        QCOMPARE(logger->lines().size(), 2);
        QVERIFY(logged("Update element Lamp item: i-2", 431));
        QVERIFY(logged("Functions id is empty", 435));
        QCOMPARE(logger->lines().at(1).line, 435);
        QVERIFY(!element->getFunctionIds().contains("i-2"));
    }

    void an_equal_value_is_announced_too() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        load();
        database->set_item("i-1", "1");
        QCOMPARE(said(), QStringList("value e [a] {a=1}"));
    }

    void of_two_functions_on_one_item_the_first_only_follows() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}, {"b", "i-1"}});
        load();
        database->set_item("i-1", "9");
        QCOMPARE(said(), QStringList("value e [a] {a=9,b=1}"));
    }

    void a_function_without_an_item_follows_the_empty_id() {
        database->add_element("e", "Lamp", 1, {{"a", QVariant()}});
        load();
        Q_EMIT database->realtime()->onRealtimeChangeItem({}, "");
        QCOMPARE(said(), QStringList("value e [a] {a=}"));
    }

    void an_item_that_is_gone_has_an_empty_value() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        load();
        database->remove_value("i-1");
        Q_EMIT database->realtime()->onRealtimeChangeItem({}, "i-1");
        QCOMPARE(said(), QStringList("value e [a] {a=}"));
    }

    void the_packet_is_not_read() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        load();
        Q_EMIT database->realtime()->onRealtimeChangeItem({{"i-2", "7"}, {"value", "8"}}, "i-1");
        QCOMPARE(said(), QStringList("value e [a] {a=1}"));
    }

    void the_update_slot_is_callable_by_name() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        load();
        database->store_item("i-1", "3");
        QVERIFY(QMetaObject::invokeMethod(element.get(), "update_value", Q_ARG(QString, "i-1")));
        QCOMPARE(said(), QStringList("value e [a] {a=3}"));
    }

    void a_changed_scenario_is_announced_once() {
        database->add_scenario_element("e", "Night", "s");
        load();
        database->set_scenary("s", true);
        QCOMPARE(said(), QStringList("value e [execute] {execute=true}"));
        QCOMPARE(logger->lines().size(), 1);
        QVERIFY(logged("Update element Night item: s", 431));
    }

    void another_scenario_is_not_even_logged() {
        database->add_scenary("s-2", false);
        database->add_scenario_element("e", "Night", "s");
        load();
        database->set_scenary("s-2", true);
        QCOMPARE(said(), QStringList());
        QVERIFY(logger->lines().isEmpty());
    }

    void a_scenario_is_nothing_to_other_types() {
        database->add_element("e", "Lamp", 1, {{"a", "s"}});
        load();
        database->set_scenary("s", true);
        QCOMPARE(said(), QStringList());
        QVERIFY(logger->lines().isEmpty());
    }

    void a_scenario_change_needs_the_scenario_in_the_database_data() {
        QTest::addColumn<QString>("now");
        QTest::newRow("gone") << "gone";
        QTest::newRow("another type") << "type";
        QTest::newRow("another class") << "class";
        QTest::newRow("another scenario") << "scenario";
        QTest::newRow("no database") << "none";
    }
    void a_scenario_change_needs_the_scenario_in_the_database() {
        QFETCH(const QString, now);
        database->add_scenario_element("e", "Night", "s");
        load();
        if (now == "gone") {
            database->remove_element("e");
        } else if (now == "type") {
            const fakes::objects::ps_element_data_t data{"Night", 9, 0, {}};
            database->tables().put("e", std::make_unique<fakes::objects::psoe_scenario>(data, "s"));
        } else if (now == "class") {
            database->add_element("e", "Night", 8, {});
        } else if (now == "scenario") {
            database->add_scenario_element("e", "Night", "s-2");
        } else {
            database.reset();
        }
        QVERIFY(QMetaObject::invokeMethod(element.get(), "onRealtimeChangeScenaryObjects",
                                          Q_ARG(QJsonObject, {}), Q_ARG(QString, "s")));
        QCOMPARE(said(), QStringList());
        QVERIFY(logger->lines().isEmpty());
    }

    void an_element_that_became_a_scenario_meanwhile_is_no_scenario_yet() {
        // Its item is named like the scenario; the type is taken over when it is read again.
        database->add_element("e", "Lamp", 1, {{"a", "s"}});
        load();
        database->add_scenario_element("e", "Night", "s");
        database->set_scenary("s", true);
        QCOMPARE(said(), QStringList());
        QVERIFY(logger->lines().isEmpty());
        QCOMPARE(element->getFunctionValues(), (hash_t{{"a", ""}}));
    }

    void a_scenario_with_negative_flags_ignores_its_scenario() {
        database->add_scenario_element("e", "Night", "s", -1, {{"a", "i-1"}});
        load();
        database->set_scenary("s", true);
        QCOMPARE(said(), QStringList());
        QVERIFY(logger->lines().isEmpty());
    }

    void a_scenario_with_negative_flags_loses_the_value_of_a_changed_item() {
        database->add_scenario_element("e", "Night", "s", -1, {{"a", "i-1"}});
        load();
        QCOMPARE(element->getFunctionValues(), (hash_t{{"a", "1"}}));
        database->set_item("i-1", "9");
        QCOMPARE(said(), QStringList("value e [a] {a=}"));
    }

    void an_item_change_named_like_the_scenario_reads_the_scenario() {
        database->add_item("s", "77");
        database->add_scenario_element("e", "Night", "s");
        load();
        Q_EMIT database->realtime()->onRealtimeChangeItem({}, "s");
        QCOMPARE(said(), QStringList("value e [execute] {execute=false}"));
    }

    void a_change_after_the_database_went_is_survived() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}});
        load();
        database->set_item("i-1", "9");
        database.reset();
        QCOMPARE(said(), QStringList("value e [a] {a=}"));
    }

    void the_hash_of_values_arrives_intact_through_a_queue() {
        database->add_element("e", "Lamp", 1, {{"a", "i-1"}, {"b", "i-2"}});
        load();
        QThread other;
        change_receiver_t receiver;
        receiver.moveToThread(&other);
        QVERIFY(connect(
            element.get(),
            SIGNAL(value_change(const QString&, QHash<QString, QString>, const QStringList&)),
            &receiver, SLOT(take(const QString&, QHash<QString, QString>, const QStringList&)),
            Qt::QueuedConnection));
        database->set_item("i-2", "x y");
        QCoreApplication::processEvents();
        QCOMPARE(receiver.thread, nullptr);
        other.start();
        QVERIFY(other.wait(5000));
        QCOMPARE(receiver.thread, &other);
        QCOMPARE(receiver.id, "e");
        QCOMPARE(receiver.values, (hash_t{{"a", "1"}, {"b", "x y"}}));
        QCOMPARE(receiver.functions, QStringList("b"));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_changes)
#include "tst_data_api_element_object_changes.moc"
