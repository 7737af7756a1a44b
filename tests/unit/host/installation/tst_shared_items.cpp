#include "installation/shared_items.h"

#include <QElapsedTimer>
#include <QTest>

using namespace database::installation;

class tst_shared_items : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void items_of_one_element_are_not_shared() {
        installation_t whole;
        whole.items = {{"i-a", {"0"}}, {"i-b", {"0"}}};
        whole.thermostats["t"] = {{{"setpoint", "i-a"}, {"mode", "i-a"}}, "i-a", "i-a"};
        whole.elements["e-a"] = {"", 17, 0, {{"x", "i-a"}, {"y", QString()}}, {}, "t"};
        whole.elements["e-b"] = {"", 1, 0, {{"x", "i-b"}, {"y", QString()}}, {}, {}};
        QCOMPARE(shared_items(whole), QStringList());
    }

    void whatever_way_an_element_has_an_item_it_shares_it_data() {
        QTest::addColumn<thermostat_t>("thermostat");
        QTest::newRow("key") << thermostat_t{{{"setpoint", "i"}}, {}, {}};
        QTest::newRow("measured temperature") << thermostat_t{{}, "i", {}};
        QTest::newRow("window contact") << thermostat_t{{}, {}, "i"};
    }
    void whatever_way_an_element_has_an_item_it_shares_it() {
        QFETCH(thermostat_t, thermostat);
        installation_t whole;
        whole.thermostats["t"] = thermostat;
        whole.elements["e-therm"] = {"", 17, 0, {}, {}, "t"};
        whole.elements["e-win"] = {"", 7, 0, {{"open", "i"}}, {}, {}};
        QCOMPARE(shared_items(whole),
                 QStringList(
                     "Item i is shared by elements e-therm and e-win: a right on one reaches it."));
    }

    void a_scenario_is_shared_too() {
        installation_t whole;
        whole.elements["e-a"].scenario = "s";
        whole.elements["e-b"].scenario = "s";
        QCOMPARE(shared_items(whole),
                 QStringList(
                     "Scenario s is shared by elements e-a and e-b: a right on one reaches it."));
    }

    void ten_thousand_elements_are_a_bounded_number_of_lines() {
        installation_t whole;
        for (int i = 0; i < 10000; ++i) {
            const QString item = QStringLiteral("i-%1").arg(i % 1000, 4, 10, QLatin1Char('0'));
            whole.elements[QStringLiteral("e-%1").arg(i, 5, 10, QLatin1Char('0'))].functions = {
                {"execute", item}};
        }
        const QStringList told = shared_items(whole);
        QCOMPARE(told.size(), 21);
        QCOMPARE(told.first(),
                 "Item i-0000 is shared by elements e-00000, e-01000, e-02000 and 7 more: a right "
                 "on one reaches it.");
        QCOMPARE(told.last(), "980 more are shared by elements.");
    }
};

QTEST_GUILESS_MAIN(tst_shared_items)
#include "tst_shared_items.moc"
