#include <QTest>
#include <QTimer>
#include <memory>

#include "fakes/memory_database_t.h"
#include "fakes/recording_logger_t.h"
#include "unit/server/drivers/plugins/plugin_driver_api/data/event_recorder_t.h"

using interfaces::data_api_elements_t;

/// Bulk changes of the database: one reload behind a burst.
class tst_data_api_elements_reload : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::recording_logger_t> logger;
    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_elements_t> elements;
    std::unique_ptr<kit::event_recorder_t> events;

    QTimer* timer() const { return elements->findChild<QTimer*>({}, Qt::FindDirectChildrenOnly); }
    qsizetype reloads() const { return logger->count("Reload data api"); }
    void announce(const QString& _signal) {
        if (_signal == "onPersistentChangeDatabase") {
            Q_EMIT database->persistent()->onPersistentChangeDatabase({});
        } else if (_signal == "onPersistentChangeElements") {
            Q_EMIT database->persistent()->onPersistentChangeElements({});
        } else if (_signal == "onRealtimeChangeDatabase") {
            Q_EMIT database->realtime()->onRealtimeChangeDatabase({});
        } else {
            Q_EMIT database->realtime()->onRealtimeChangeItems({});
        }
    }
    const QStringList bulk{"onPersistentChangeDatabase", "onPersistentChangeElements",
                           "onRealtimeChangeDatabase", "onRealtimeChangeItems"};

 private Q_SLOTS:
    void init() {
        logger = std::make_unique<fakes::recording_logger_t>();
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "1");
        database->add_element("e-old", "Old", 1, {{"execute", "i"}});
        database->add_user("u", "alice");
        database->grant("u", "e-old", 3);
        elements = std::make_unique<data_api_elements_t>(database->get(), nullptr);
        elements->init();
        QCoreApplication::processEvents();
        events = std::make_unique<kit::event_recorder_t>(elements.get());
        logger->clear();
    }
    void cleanup() {
        events.reset();
        elements.reset();
        database.reset();
        logger.reset();
    }

    void the_timer_waits_100_ms_once() {
        QCOMPARE(elements->findChildren<QTimer*>().size(), 1);
        QCOMPARE(timer()->interval(), 100);
        QVERIFY(timer()->isSingleShot());
        QVERIFY(!timer()->isActive());
    }

    void each_bulk_change_starts_the_wait_data() {
        QTest::addColumn<QString>("signal");
        for (const QString& signal : bulk) {
            QTest::newRow(qPrintable(signal)) << signal;
        }
    }
    void each_bulk_change_starts_the_wait() {
        QFETCH(const QString, signal);
        announce(signal);
        QVERIFY(!timer()->isActive());
        QCoreApplication::processEvents();
        QVERIFY(timer()->isActive());
        QCOMPARE(reloads(), 0);
        QCOMPARE(events->take(), QStringList());
    }

    void single_changes_start_no_reload() {
        Q_EMIT database->persistent()->onPersistentChangeElement({}, "e-old");
        Q_EMIT database->persistent()->onPersistentChangeUsers({});
        Q_EMIT database->persistent()->onPersistentChangeUser({}, "u");
        QCoreApplication::processEvents();
        QVERIFY(!timer()->isActive());
    }

    void a_burst_reloads_exactly_once() {
        database->remove_element("e-old");
        database->add_element("e-new", "New", 1, {{"execute", "i"}});
        for (int i = 0; i < 3; ++i) {
            for (const QString& signal : bulk) {
                announce(signal);
            }
        }
        QCoreApplication::processEvents();
        QCOMPARE(reloads(), 0);
        QTRY_COMPARE(reloads(), 1);
        QVERIFY(!timer()->isActive());
        QCOMPARE(events->take(), (QStringList{"reset true [e-old]", "remove alice e-old", "acl",
                                              "reset false []", "value e-new [i]", "acl"}));
        QCoreApplication::processEvents();
        QCOMPARE(reloads(), 1);
        QVERIFY(!timer()->isActive());
        QCOMPARE(events->take(), QStringList());
        QCOMPARE(elements->get_data_api_elements().keys(), QStringList("e-new"));
    }

    void the_reload_is_logged_before_it_begins() {
        QList<qsizetype> logged;
        connect(elements.get(), &data_api_elements_t::on_reset_api_elements, this,
                [this, &logged] { logged.append(reloads()); });
        announce(bulk.constFirst());
        QTRY_COMPARE(reloads(), 1);
        QCOMPARE(logged, (QList<qsizetype>{1, 1}));
        QVERIFY(logger->contains(
            "Reload data api data ...", 3, "operator()",
            "server/drivers/plugins/plugin_driver_api/data/data_api_elements_t", 24));
    }

    void after_a_reload_it_listens_again() {
        announce(bulk.constFirst());
        QTRY_COMPARE(reloads(), 1);
        announce(bulk.constLast());
        QTRY_COMPARE(reloads(), 2);
    }

    void a_reload_brings_new_objects() {
        const auto before = elements->get_data_api_element_object("e-old");
        announce(bulk.constFirst());
        QTRY_COMPARE(reloads(), 1);
        const auto after = elements->get_data_api_element_object("e-old");
        QVERIFY(!after.isNull());
        QVERIFY(after != before);
        QTRY_VERIFY(before.isNull());
    }

    void a_reload_that_is_due_runs_after_the_collection_was_switched_off() {
        announce(bulk.constFirst());
        QCoreApplication::processEvents();
        elements->setEnabled(false);
        QCOMPARE(events->take(), (QStringList{"reset true [e-old]", "remove alice e-old", "acl",
                                              "reset false []"}));
        QVERIFY(timer()->isActive());
        QTRY_COMPARE(reloads(), 1);
        // It loads as ever; who is switched off says so himself.
        QCOMPARE(events->take(),
                 (QStringList{"reset true []", "reset false []", "value e-old [i]", "acl"}));
        QCOMPARE(elements->get_data_api_elements().keys(), QStringList("e-old"));
        QVERIFY(!elements->getEnabled());
    }

    void deleting_the_collection_ends_the_wait() {
        announce(bulk.constFirst());
        QCoreApplication::processEvents();
        const QPointer<QTimer> waiting = timer();
        QVERIFY(waiting->isActive());
        events.reset();
        elements.reset();
        QVERIFY(waiting.isNull());
        QCOMPARE(reloads(), 0);
    }

    void a_reload_without_a_database_leaves_an_empty_collection() {
        announce(bulk.constFirst());
        database.reset();
        QTRY_COMPARE(reloads(), 1);
        QVERIFY(elements->get_data_api_elements().isEmpty());
        elements->onRealtimeChangeItems({});
        QVERIFY(timer()->isActive());
    }
};

QTEST_GUILESS_MAIN(tst_data_api_elements_reload)
#include "tst_data_api_elements_reload.moc"
