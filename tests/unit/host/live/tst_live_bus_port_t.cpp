#include "live/live_bus_port_t.h"

#include <QSignalSpy>
#include <QTest>

#include "fakes/memory_database_t.h"
#include "kit/notifier_log_t.h"
#include "live/simulated_bus_t.h"

using namespace database::live;

class tst_live_bus_port_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        port.reset();
        memory = std::make_unique<fakes::memory_database_t>();
        memory->add_item("i-lamp", "0");
        memory->add_item("i-dim", "40");
        memory->add_scenary("s-night", false);
        realtime = std::make_unique<realtime_writer_t>(memory->get());
        gate = std::make_unique<write_gate_t>(memory->get());
        port = std::make_unique<live_bus_port_t>(memory->get(), realtime.get(), gate.get(),
                                                 bus::bus_settings_t{"local:/x", 25, true});
        port->set_points({{"i-lamp", data}}, {{"s-night", data}});
    }

    void requests_for_what_the_bus_owns_go_out() {
        QSignalSpy values(port.get(), &live_bus_port_t::value_requested);
        QSignalSpy executions(port.get(), &live_bus_port_t::execution_requested);
        memory->data()->getItems()->list("i-dim")->requestSetValue("50");
        memory->data()->getItems()->list("i-lamp")->requestSetValue("1");
        memory->data()->getScenary()->list("s-night")->requestSetExecution(true);
        QTRY_COMPARE(executions.size(), 1);
        QTRY_COMPARE(values.size(), 1);
        QCOMPARE(values[0], QVariantList({"i-lamp", "1"}));
        QCOMPARE(executions[0], QVariantList({"s-night", true}));
    }

    void the_simulated_bus_answers_for_the_others_only() {
        simulated_bus_t simulated(memory->get(), realtime.get(), gate.get());
        simulated.leave_to(port.get());
        notifier_log_t log(memory->get());
        memory->data()->getItems()->list("i-lamp")->requestSetValue("1");
        memory->data()->getScenary()->list("s-night")->requestSetExecution(true);
        memory->data()->getItems()->list("i-dim")->requestSetValue("50");
        QTRY_COMPARE(log.lines, QStringList("item i-dim"));
        QCOMPARE(port->value("i-lamp"), "0");
    }

    void reported_value_is_announced_also_when_it_is_the_same() {
        QSignalSpy values(port.get(), &live_bus_port_t::value_requested);
        notifier_log_t log(memory->get());
        port->report_value("i-lamp", "0");
        port->report_value("i-lamp", "1");
        port->report_execution("s-night", true);
        port->report_value("i-nobody", "1");
        QTRY_COMPARE(log.lines, QStringList({"item i-lamp", "item i-lamp", "scenario s-night"}));
        QCOMPARE(port->value("i-lamp"), "1");
        QCOMPARE(port->value("i-nobody"), QString());
        QCOMPARE(values.size(), 0);
    }

    void drivers_hear_that_the_bus_owns_something_else() {
        QSignalSpy changed(port.get(), &live_bus_port_t::points_changed);
        port->set_points({{"i-lamp", data}}, {{"s-night", data}});
        QCOMPARE(changed.size(), 0);
        port->set_points({{"i-dim", data}}, {});
        QCOMPARE(changed.size(), 1);
        QVERIFY(port->owns_item("i-dim") && !port->owns_item("i-lamp"));
        QVERIFY(!port->owns_scenario("s-night"));
    }

    void link_is_told_when_it_changes() {
        QSignalSpy link(port.get(), &live_bus_port_t::link_changed);
        port->report_link(false);
        port->report_link(true);
        port->report_link(true);
        QVERIFY(port->is_link_up());
        port->report_link(false);
        QCOMPARE(link.size(), 2);
        QVERIFY(!port->is_link_up());
    }

    void counters_are_those_of_the_driver_now() {
        QCOMPARE(port->counters().received, quint64(0));
        bus::bus_counters_t counted;
        connect(port.get(), &live_bus_port_t::counters_asked, this, [this, &counted]() {
            ++counted.received;
            port->report_counters(counted);
        });
        QCOMPARE(port->counters().received, quint64(1));
        QCOMPARE(port->counters().received, quint64(2));
    }

 private:
    const bus::bus_data_t data{.dpt = "1.001", .write = "1/1/1", .status = {}};
    std::unique_ptr<fakes::memory_database_t> memory;
    std::unique_ptr<realtime_writer_t> realtime;
    std::unique_ptr<write_gate_t> gate;
    std::unique_ptr<live_bus_port_t> port;
};

QTEST_GUILESS_MAIN(tst_live_bus_port_t)
#include "tst_live_bus_port_t.moc"
