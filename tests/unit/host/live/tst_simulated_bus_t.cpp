#include "live/simulated_bus_t.h"

#include <QTest>

#include "fakes/memory_database_t.h"
#include "kit/notifier_log_t.h"

using namespace database::live;

class tst_simulated_bus_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        bus.reset();
        memory = std::make_unique<fakes::memory_database_t>();
        memory->add_item("i-lamp", "0");
        memory->add_item("i-temp", "20.5");
        memory->add_thermostat("t-living", {{"setpoint", "i-lamp"}}, "i-temp", "");
        memory->add_scenary("s-night", false);
        realtime = std::make_unique<realtime_writer_t>(memory->get());
        gate = std::make_unique<write_gate_t>(memory->get());
        bus = std::make_unique<simulated_bus_t>(memory->get(), realtime.get(), gate.get());
    }

    void a_request_is_answered_later_with_the_value() {
        notifier_log_t log(memory->get());
        memory->data()->getItems()->list("i-lamp")->requestSetValue("1");
        QCOMPARE(value("i-lamp"), "0");
        QTRY_COMPARE(log.lines, QStringList("item i-lamp"));
        QCOMPARE(value("i-lamp"), "1");
    }

    void a_scenario_takes_the_requested_execution() {
        notifier_log_t log(memory->get());
        memory->data()->getScenary()->list("s-night")->requestSetExecution(true);
        QTRY_COMPARE(log.lines, QStringList("scenario s-night"));
        QVERIFY(memory->get()->getRealtime()->getScenary()->list("s-night")->getExecution());
    }

    void a_request_for_the_present_value_is_answered_too() {
        notifier_log_t log(memory->get());
        memory->data()->getItems()->list("i-lamp")->requestSetValue("0");
        QTRY_COMPARE(log.lines, QStringList("item i-lamp"));
    }

    void what_an_item_does_not_take_has_no_answer() {
        gate->set_limits("i-lamp", {.writable = false});
        notifier_log_t log(memory->get());
        memory->data()->getItems()->list("i-lamp")->requestSetValue("1");
        for (int i = 0; i < 10; ++i) {
            QCoreApplication::processEvents();
        }
        QCOMPARE(log.lines, QStringList());
        QCOMPARE(value("i-lamp"), "0");
    }

    void what_an_item_does_not_take_may_drift() {
        gate->set_limits("i-temp", {.writable = false});
        bus->simulate(true, {nullptr, 0, 1});
        QTRY_VERIFY(value("i-temp") != "20.5");
    }

    void without_the_bus_a_request_has_no_answer() {
        notifier_log_t log(memory->get());
        memory->data()->getItems()->list("i-lamp")->requestSetValue("1");
        bus.reset();
        QCoreApplication::processEvents();
        QCOMPARE(log.lines, QStringList());
    }

    void what_thermostats_measure_drifts() {
        bus->simulate(true, {nullptr, 0, 1});
        QTRY_VERIFY(value("i-temp") != "20.5");
        QCOMPARE(value("i-lamp"), "0");
    }

    void the_same_seed_drifts_the_same_way() {
        const QStringList first = walk(7);
        init();
        QCOMPARE(walk(7), first);
        init();
        QVERIFY(walk(8) != first);
    }

    void the_drift_stops() {
        bus->simulate(true, {nullptr, 0, 1});
        QTRY_VERIFY(value("i-temp") != "20.5");
        bus->simulate(false);
        notifier_log_t log(memory->get());
        for (int i = 0; i < 10; ++i) {
            QCoreApplication::processEvents();
        }
        QCOMPARE(log.lines, QStringList());
    }

    void a_drifting_value_stays_believable() {
        memory->set_item("i-temp", "35.0");
        notifier_log_t log(memory->get());
        QStringList unlikely;
        log.at_signal = [this, &unlikely](const QString&) {
            const double now = value("i-temp").toDouble();
            unlikely += now > 35 || now < 10 ? QStringList(value("i-temp")) : QStringList();
        };
        bus->simulate(true, {nullptr, 0, 1});
        QTRY_VERIFY(log.lines.size() > 50);
        QCOMPARE(unlikely, QStringList());
    }

 private:
    QString value(const QString& _id) {
        return memory->get()->getRealtime()->getItems()->list(_id)->getValue();
    }
    /// The first values of a drift of one chosen item.
    QStringList walk(quint32 _seed) {
        notifier_log_t log(memory->get());
        QStringList values;
        log.at_signal = [this, &values](const QString&) { values.append(value("i-temp")); };
        bus->simulate(true, {[](const QString& _id) { return _id == "i-temp"; }, 0, _seed});
        const bool enough = QTest::qWaitFor([&values] { return values.size() >= 20; });
        bus->simulate(false);
        return enough ? values.mid(0, 20) : QStringList("too few");
    }

    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<realtime_writer_t> realtime;
    std::unique_ptr<write_gate_t> gate;
    std::unique_ptr<simulated_bus_t> bus;
};

QTEST_GUILESS_MAIN(tst_simulated_bus_t)
#include "tst_simulated_bus_t.moc"
