#include <QTest>
#include <functional>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_v1_t.h"
#include "fakes/memory_database_t.h"
#include "kit/opened.h"
#include "kit/waiting_call_t.h"

using interfaces::data_api_elements_t;
using interfaces::data_api_elements_v1_t;

KIT_OPEN(collection_lock_t, data_api_elements_t, lock, base::recursive_mutex_t);

/// What the collection does under its lock: all work on its tables, and what it says meanwhile.
class tst_data_api_elements_locks : public QObject {
    Q_OBJECT

    using operation_t = std::function<void(data_api_elements_v1_t&)>;

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_elements_v1_t> elements;
    QStringList seen;

    base::recursive_mutex_t& lock() { return elements.get()->*opened(kit::collection_lock_t()); }
    /// Whether another thread would have to wait.
    bool is_held() {
        bool taken = false;
        kit::waiting_call_t([this, &taken] {
            taken = lock().tryLock();
            if (taken) {
                lock().unlock();
            }
        }).finish();
        return !taken;
    }
    /// Whether the operation waits on another thread while this one holds the lock. To be called
    /// for what changes nothing here: elements are made on the collection's own thread.
    bool waits(const operation_t& _operation) {
        lock().lock();
        kit::waiting_call_t call([this, &_operation] { _operation(*elements); });
        const bool waited = call.waits();
        lock().unlock();
        call.finish();
        return waited;
    }
    void follow() {
        const auto note = [this](const char* _what) {
            seen.append(QString(_what) + (is_held() ? " held" : " free"));
        };
        connect(elements.get(), &data_api_elements_t::value_change, this,
                [note] { note("value"); });
        connect(elements.get(), &data_api_elements_t::acl_changes, this, [note] { note("acl"); });
        connect(elements.get(), &data_api_elements_t::remove_acl_element, this,
                [note] { note("remove"); });
        connect(elements.get(), &data_api_elements_t::on_reset_api_elements, this,
                [note] { note("reset"); });
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        elements = std::make_unique<data_api_elements_v1_t>(database->get(), nullptr);
        seen.clear();
    }
    void cleanup() { elements.reset(); }

    void an_operation_waits_for_another_threads_data() {
        QTest::addColumn<operation_t>("operation");
        const auto row = [](const char* name, const operation_t& operation) {
            QTest::newRow(name) << operation;
        };
        row("init", [](auto& all) { all.init(); });
        row("reset", [](auto& all) { all.reset(); });
        row("reinit", [](auto& all) { all.reinit(); });
        row("setEnabled", [](auto& all) { all.setEnabled(false); });
        row("addElement", [](auto& all) { all.addElement("none"); });
        row("removeElement", [](auto& all) { all.removeElement("none"); });
        row("check_permission", [](auto& all) { all.check_permission(); });
        row("populate_acl", [](auto& all) { all.populate_acl(); });
        row("populate_acl(id)", [](auto& all) { all.populate_acl("none"); });
        row("get_data_api_elements", [](auto& all) { all.get_data_api_elements(); });
        row("get_data_api_element_object",
            [](auto& all) { all.get_data_api_element_object("none"); });
        row("toJson", [](auto& all) { all.toJson("alice", {}); });
        row("onPersistentChangeDatabase", [](auto& all) { all.onPersistentChangeDatabase({}); });
        row("onRealtimeChangeDatabase", [](auto& all) { all.onRealtimeChangeDatabase({}); });
        row("onPersistentChangeElements", [](auto& all) { all.onPersistentChangeElements({}); });
        row("onPersistentChangeElement",
            [](auto& all) { all.onPersistentChangeElement({}, "none"); });
        row("onRealtimeChangeItems", [](auto& all) { all.onRealtimeChangeItems({}); });
        row("onPersistentChangeUsers", [](auto& all) { all.onPersistentChangeUsers({}); });
        row("onPersistentChangeUser", [](auto& all) { all.onPersistentChangeUser({}, "none"); });
    }
    void an_operation_waits_for_another_threads() {
        QFETCH(const operation_t, operation);
        QVERIFY(waits(operation));
        QVERIFY(!is_held());
    }

    void a_changed_element_is_looked_up_under_the_lock() {
        database->add_element("e", "Lamp", 1, {});
        elements->init();
        database->remove_element("e");
        lock().lock();
        kit::waiting_call_t call([this] { elements->onPersistentChangeElement({}, "e"); });
        const bool waited = call.waits();
        database->add_element("e", "Lamp", 1, {});
        lock().unlock();
        call.finish();
        QVERIFY(waited);
        // It is there again by the time it may be looked at.
        QVERIFY(!elements->get_data_api_element_object("e").isNull());
    }

    void the_acl_table_is_copied_without_the_lock() {
        QVERIFY(!waits([](auto& all) { all.get_data_api_elements_acl(); }));
    }

    void everything_is_said_under_the_lock() {
        database->add_element("e-1", "One", 1, {});
        database->add_element("e-2", "Two", 1, {});
        database->add_user("u", "alice");
        database->grant("u", "e-1", 1);
        follow();
        elements->addElement("e-1");
        QCOMPARE(seen, QStringList("value held"));
        seen.clear();
        elements->init();
        QCOMPARE(seen, (QStringList{"value held", "acl held"}));
        seen.clear();
        elements->check_permission();
        QCOMPARE(seen, QStringList("acl held"));
        seen.clear();
        elements->reinit();
        QCOMPARE(seen, QStringList("acl held"));
        seen.clear();
        elements->removeElement("e-1");
        QCOMPARE(seen, (QStringList{"remove held", "acl held"}));
        seen.clear();
        elements->reset();
        QCOMPARE(seen, (QStringList{"reset held", "remove held", "acl held", "reset held"}));
        QVERIFY(!is_held());
    }
};

QTEST_GUILESS_MAIN(tst_data_api_elements_locks)
#include "tst_data_api_elements_locks.moc"
