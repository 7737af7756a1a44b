#include "live/model_t.h"

#include <QTest>

#include "database/persistent/objects/psoe_scenario.h"
#include "database/persistent/objects/psoe_thermo_logic.h"
#include "kit/notifier_log_t.h"
#include "kit/sample_installation.h"

using database::live::model_changes_t;
using database::live::model_t;
using database::live::realtime_writer_t;
using database::live::write_gate_t;
using database::persistent::objects::ps_object_user_t;
namespace objects = database::persistent::objects;

class tst_model_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        db = std::make_unique<database::database_t>();
        realtime = std::make_unique<realtime_writer_t>(db.get());
        gate = std::make_unique<write_gate_t>(db.get());
        model = std::make_unique<model_t>(db.get(), realtime.get(), gate.get());
        model->fill(sample::installation());
    }

    void the_type_code_decides_the_class() {
        auto* elements = data()->getElements();
        QCOMPARE(elements->getObjects().keys(), QStringList({"e-lamp", "e-night", "e-therm"}));
        QCOMPARE(elements->list("e-lamp")->metaObject()->className(),
                 "database::persistent::objects::ps_object_element_t");
        const auto* scenario = qobject_cast<objects::psoe_scenario*>(elements->list("e-night"));
        QVERIFY(scenario != nullptr);
        QCOMPARE(scenario->getScenario_id(), "s-night");
        QCOMPARE(scenario->getFlags(), std::numeric_limits<qint32>::min());
        QCOMPARE(scenario->getFunction_map().value("execute").toString(), "i-dim");
        const auto* thermo = qobject_cast<objects::psoe_thermo_logic*>(elements->list("e-therm"));
        QVERIFY(thermo != nullptr);
        QCOMPARE(thermo->getThermoId(), "t-living");
    }

    void a_function_without_item_is_an_invalid_value() {
        const auto functions = data()->getElements()->list("e-lamp")->getFunction_map();
        QCOMPARE(functions.keys(), QStringList({"dim", "execute", "spare"}));
        QVERIFY(!functions.value("spare").isValid());
        QCOMPARE(functions.value("execute").toString(), "i-lamp");
    }

    void thermostats_users_grants_topic_and_values_are_there() {
        const auto* thermostat = data()->getThermo()->list("t-living");
        QCOMPARE(thermostat->getThermo()->getIds().value("setpoint").toString(), "i-set");
        QVERIFY(!thermostat->getThermo()->getIds().value("mode").isValid());
        QCOMPARE(thermostat->getThermo()->getIdActual(), "i-temp");
        QCOMPARE(thermostat->getIdWindowsContact(), "i-win");
        QCOMPARE(data()->getUsers()->getUsernamesAPI(true), QStringList({"alice", "bob"}));
        QCOMPARE(bits("e-lamp", "u-alice"), 3);
        QCOMPARE(bits("e-lamp", "u-bob"), 1);
        QCOMPARE(bits("e-therm", "u-bob"), 2);
        QCOMPARE(bits("e-night", "u-bob"), 0);
        QCOMPARE(db->getPersistent()->getTopicbase()->getTopic(), "installation/0001");
        QCOMPARE(db->getRealtime()->getItems()->list("i-temp")->getValue(), "21");
        QCOMPARE(db->getRealtime()->getScenary()->list("s-night")->getExecution(), false);
        QCOMPARE(data()->getItems()->getObjects().size(), 5);
        QCOMPARE(data()->getScenary()->getObjects().size(), 1);
    }

    void filling_again_leaves_nothing_of_the_old() {
        realtime->write_item("i-lamp", "9");
        model->fill({});
        QVERIFY(data()->getElements()->getObjects().isEmpty());
        QVERIFY(data()->getUsers()->getObjects().isEmpty());
        QVERIFY(db->getRealtime()->getItems()->getObjects().isEmpty());
        QCOMPARE(bits("e-lamp", "u-alice"), 0);
        QVERIFY(realtime->unsaved_items().empty());
    }

    void a_key_that_is_gone_is_taken_out() {
        database::store::change_batch_t batch;
        batch.elements = {"e-lamp"};
        batch.items = {"i-lamp"};
        batch.scenarios = {"s-night"};
        batch.thermostats = {"t-living"};
        batch.users = {"u-bob"};
        const model_changes_t changes = model->apply(batch, {});
        QVERIFY(!data()->getElements()->getObjects().contains("e-lamp"));
        QVERIFY(!data()->getItems()->getObjects().contains("i-lamp"));
        QVERIFY(!db->getRealtime()->getItems()->getObjects().contains("i-lamp"));
        QVERIFY(data()->getScenary()->getObjects().isEmpty());
        QVERIFY(data()->getThermo()->getObjects().isEmpty());
        QCOMPARE(data()->getUsers()->getUsersAPI(true), QStringList("u-alice"));
        QCOMPARE(bits("e-lamp", "u-bob"), 0);
        QCOMPARE(bits("e-lamp", "u-alice"), 0);
        QCOMPARE(changes.items, QStringList("i-lamp"));
    }

    void a_changed_thermostat_takes_its_elements_along() {
        database::store::change_batch_t batch;
        batch.thermostats = {"t-living"};
        const model_changes_t changes = model->apply(batch, sample::installation());
        QCOMPARE(changes.thermostats, QStringList("t-living"));
        QCOMPARE(changes.elements, QStringList("e-therm"));
    }

    void an_unchanged_value_is_no_change() {
        database::store::change_batch_t batch;
        batch.items = {"i-lamp", "i-dim"};
        batch.scenarios = {"s-night"};
        auto part = sample::installation();
        part.items["i-dim"].value = "41";
        const model_changes_t changes = model->apply(batch, part);
        QCOMPARE(changes.items, QStringList("i-dim"));
        QCOMPARE(changes.scenarios, QStringList());
    }

    void what_items_take_is_known_to_the_gate() {
        auto whole = sample::installation();
        whole.items["i-win"].limits.writable = false;
        model->fill(whole);
        QCOMPARE(gate->refusal("i-win", "1"), "it is not writable");
        QCOMPARE(gate->refusal("i-lamp", "1"), "");

        database::store::change_batch_t batch;
        batch.items = {"i-lamp"};
        batch.limits = {"i-win"};
        whole.items["i-win"].limits = {};
        whole.items["i-lamp"].limits = {true, 0, 1, 1};
        model->apply(batch, whole);
        QCOMPARE(gate->refusal("i-win", "1"), "");
        QCOMPARE(gate->refusal("i-lamp", "2"), "it is above 1");

        whole.items.remove("i-lamp");
        model->apply(batch, whole);
        QCOMPARE(gate->refusal("i-lamp", "2"), "");
        model->fill({});
        QCOMPARE(gate->refusal("i-win", "1"), "");
    }

    void other_limits_leave_an_unsaved_value_alone() {
        realtime->write_item("i-lamp", "9");
        database::store::change_batch_t batch;
        batch.limits = {"i-lamp"};
        const model_changes_t changes = model->apply(batch, sample::installation());
        QCOMPARE(changes.items, QStringList());
        QCOMPARE(db->getRealtime()->getItems()->list("i-lamp")->getValue(), "9");
        QCOMPARE(realtime->unsaved_items().size(), size_t(1));
    }

    void requests_of_loaded_items_reach_the_bus() {
        QString asked;
        connect(
            db->getPersistent()->getRequests(),
            &database::persistent::ps_requests_t::itemValueRequested, this,
            [&asked](const QString& _id, const QString& _value) { asked = _id + "=" + _value; });
        data()->getItems()->list("i-lamp")->requestSetValue("1");
        QCOMPARE(asked, "i-lamp=1");
    }

 private:
    const database::persistent::ps_data_t* data() { return db->getPersistent()->getData(); }
    int bits(const QString& _element, const QString& _user) {
        return data()->check_permission_element_by_userid(
            _element, _user, ps_object_user_t::PermissionFlag::element);
    }

    std::unique_ptr<database::database_t> db;
    std::unique_ptr<realtime_writer_t> realtime;
    std::unique_ptr<write_gate_t> gate;
    std::unique_ptr<model_t> model;
};

QTEST_GUILESS_MAIN(tst_model_t)
#include "tst_model_t.moc"
