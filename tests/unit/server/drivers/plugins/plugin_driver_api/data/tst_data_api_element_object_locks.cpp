#include <QTest>
#include <functional>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_t.h"
#include "fakes/memory_database_t.h"
#include "kit/opened.h"
#include "kit/waiting_call_t.h"

using interfaces::data_api_element_object_t;

KIT_OPEN(element_events_mutex_t, data_api_element_object_t, events_mutex, base::mutex_t);
KIT_OPEN(element_functions_mutex_t, data_api_element_object_t, functions_mutex, base::mutex_t);

namespace {

/// A thermostat logic that tells when its class is looked at, as every rule for one does first.
class watched_logic_t : public fakes::objects::psoe_thermo_logic {
 public:
    watched_logic_t(const fakes::objects::ps_element_data_t& _data, const QString& _id,
                    std::function<void()> _looked)
        : psoe_thermo_logic(_data, _id), looked(std::move(_looked)) {}
    const QMetaObject* metaObject() const override {
        looked();
        return psoe_thermo_logic::metaObject();
    }

 private:
    std::function<void()> looked;
};

}  // namespace

/// What an element does under which of its two locks.
class tst_data_api_element_object_locks : public QObject {
    Q_OBJECT

    std::unique_ptr<fakes::memory_database_t> database;
    std::unique_ptr<data_api_element_object_t> element;
    QStringList seen;

    base::mutex_t& events() { return element.get()->*opened(kit::element_events_mutex_t()); }
    base::mutex_t& functions() { return element.get()->*opened(kit::element_functions_mutex_t()); }
    static bool is_free(base::mutex_t& _mutex) {
        const bool taken = _mutex.tryLock();
        if (taken) {
            _mutex.unlock();
        }
        return taken;
    }
    /// Which locks are held now.
    void look() {
        if (element != nullptr) {
            seen.append(QString(is_free(events()) ? "" : "events") +
                        (is_free(functions()) ? "" : " functions"));
        }
    }
    void load() {
        element = std::make_unique<data_api_element_object_t>(database->get(), "e", nullptr);
        connect(element.get(), &data_api_element_object_t::value_change, this, [this] { look(); });
    }
    void call(const char* _slot, const QString& _key) {
        QMetaObject::invokeMethod(element.get(), _slot, Qt::DirectConnection,
                                  Q_ARG(QJsonObject, {}), Q_ARG(QString, _key));
    }

 private Q_SLOTS:
    void init() {
        database = std::make_unique<fakes::memory_database_t>();
        database->add_item("i", "1");
        database->add_scenary("s", false);
        database->add_thermostat("t", {{"mode", "i"}}, "i", "i");
    }
    void cleanup() {
        element.reset();
        seen.clear();
    }

    void change_slots_run_one_at_a_time_data() {
        QTest::addColumn<QByteArray>("slot");
        QTest::newRow("item") << QByteArray("onRealtimeChangeItem");
        QTest::newRow("scenario") << QByteArray("onRealtimeChangeScenaryObjects");
        QTest::newRow("thermostat") << QByteArray("onPersistentStatusThermo");
    }
    void change_slots_run_one_at_a_time() {
        QFETCH(const QByteArray, slot);
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        events().lock();
        kit::waiting_call_t second([this, &slot] { call(slot, "none"); });
        const bool waited = second.waits();
        events().unlock();
        second.finish();
        QVERIFY(waited);
        QVERIFY(is_free(events()));
    }

    void a_changed_item_is_announced_under_the_events_lock() {
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        call("onRealtimeChangeItem", "i");
        QCOMPARE(seen, QStringList("events"));
    }

    void a_changed_scenario_is_announced_under_the_events_lock() {
        database->add_scenario_element("e", "Night", "s");
        load();
        call("onRealtimeChangeScenaryObjects", "s");
        QCOMPARE(seen, QStringList("events"));
    }

    void a_changed_thermostat_is_read_under_both_locks() {
        const fakes::objects::ps_element_data_t data{"Living room", 17, 0, {}};
        database->tables().put("e",
                               std::make_unique<watched_logic_t>(data, "t", [this] { look(); }));
        load();
        call("onPersistentStatusThermo", "t");
        seen.removeDuplicates();
        // First whether it is this element's thermostat, then its functions.
        QCOMPARE(seen, (QStringList{"events", "events functions"}));
        QVERIFY(is_free(events()));
        QVERIFY(is_free(functions()));
    }

    void functions_are_filled_in_by_one_thread_at_a_time() {
        database->add_element("e", "Lamp", 1, {});
        load();
        functions().lock();
        kit::waiting_call_t second([this] { element->populateFunctions(); });
        const bool waited = second.waits();
        functions().unlock();
        second.finish();
        QVERIFY(waited);
        QVERIFY(is_free(functions()));
    }

    void the_update_itself_and_a_load_need_no_events_lock() {
        database->add_element("e", "Lamp", 1, {{"execute", "i"}});
        load();
        QVERIFY(QMetaObject::invokeMethod(element.get(), "update_value", Q_ARG(QString, "i")));
        element->init();
        QCOMPARE(seen, (QStringList{"", ""}));
    }
};

QTEST_GUILESS_MAIN(tst_data_api_element_object_locks)
#include "tst_data_api_element_object_locks.moc"
