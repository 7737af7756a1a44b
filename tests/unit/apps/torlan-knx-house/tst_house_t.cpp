#include "house_t.h"

#include <QTest>

#include "home_on_bus.h"

using torlan::house_t;

class tst_house_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void switch_reports_what_it_was_told() {
        house_t house(lamp().home);
        QCOMPARE(texts_of(house.take(write("1/1/1", "01"))), QStringList{"write 1/1/2 01"});
        QCOMPARE(texts_of(house.take(write("1/1/1", "00"))), QStringList{"write 1/1/2 00"});
        QVERIFY(house.take(write("7/7/7", "01")).isEmpty());
        // Its own status, said by somebody else, is no command; an answer is none either.
        QVERIFY(house.take(write("1/1/2", "01")).isEmpty());
        auto response = write("1/1/1", "01");
        response.command = knx::command_t::response;
        QVERIFY(house.take(response).isEmpty());
    }

    void question_is_answered() {
        house_t house(lamp().home);
        auto question = write("1/1/2", "");
        question.command = knx::command_t::read;
        QCOMPARE(texts_of(house.take(question)), QStringList{"response 1/1/2 00"});
        question.destination = *knx::group_address_t::from_text("7/7/7");
        QVERIFY(house.take(question).isEmpty());
    }

    void dimmer_goes_by_steps_and_is_on_above_zero() {
        house_t house(dimmer().home);
        QVERIFY(house.take(write("1/1/3", "40")).isEmpty());  // 25 %
        QCOMPARE(texts_of(house.pass()), (QStringList{"write 1/1/4 1a", "write 1/1/2 01"}));
        QCOMPARE(texts_of(house.pass()), QStringList{"write 1/1/4 33"});
        QCOMPARE(texts_of(house.pass()), QStringList{"write 1/1/4 40"});
        QVERIFY(house.pass().isEmpty());
        house.take(write("1/1/1", "00"));
        QCOMPARE(after(&house, 3), (QStringList{"write 1/1/4 26", "write 1/1/4 0d",
                                                "write 1/1/4 00", "write 1/1/2 00"}));
        // Where it was when it was on.
        house.take(write("1/1/1", "01"));
        QCOMPARE(after(&house, 3).last(), "write 1/1/4 40");
    }

    void blind_travels_and_stops() {
        house_t house(
            home_on_bus_t()
                .item("i-at", "5.001", "2/1/1", {"2/1/2"}, "0")
                .item("i-move", "1.008", "2/1/3", {}, {})
                .item("i-stop", "1.007", "2/1/4", {}, {})
                .element("e", {{"position", "i-at"}, {"move", "i-move"}, {"stop", "i-stop"}})
                .home);
        house.take(write("2/1/3", "01"));
        QCOMPARE(after(&house, 2), (QStringList{"write 2/1/2 0d", "write 2/1/2 1a"}));
        house.take(write("2/1/4", "01"));
        QVERIFY(house.pass().isEmpty());
        house.take(write("2/1/1", "00"));
        QCOMPARE(after(&house, 3), (QStringList{"write 2/1/2 0d", "write 2/1/2 00"}));
        house.take(write("2/1/3", "01"));
        house.take(write("2/1/3", "00"));
        QVERIFY(house.pass().isEmpty());
    }

    void socket_draws_power_when_it_is_on() {
        house_t house(home_on_bus_t()
                          .item("i", "1.001", "1/1/1", {"1/1/2"}, "0")
                          .item("i-power", "14.056", {}, {"4/1/1"}, "0")
                          .element("e", {{"execute", "i"}, {"power", "i-power"}})
                          .home);
        QCOMPARE(texts_of(house.take(write("1/1/1", "01"))), QStringList{"write 1/1/2 01"});
        QCOMPARE(texts_of(house.pass()), QStringList{"write 4/1/1 42200000"});  // 40 W
        house.take(write("1/1/1", "00"));
        QCOMPARE(texts_of(house.pass()), QStringList{"write 4/1/1 00000000"});
    }

    void room_becomes_as_warm_as_it_is_set() {
        house_t house(home_on_bus_t()
                          .item("i-set", "9.001", "3/1/1", {"3/1/2"}, "19")
                          .item("i-is", "9.001", {}, {"3/1/3"}, "19")
                          .item("i-valve", "5.001", {}, {"3/1/4"}, "0")
                          .thermostat({{"setpoint", "i-set"}, {"valve", "i-valve"}}, "i-is")
                          .element("e", {{"temperature", "i-is"}})
                          .home);
        // 22 degrees.
        QCOMPARE(texts_of(house.take(write("3/1/1", "0c4c"))), QStringList{"write 3/1/2 0c4c"});
        const QStringList said = after(&house, 25 * 200);
        QCOMPARE(said.filter("3/1/4").first(), "write 3/1/4 ff");
        QCOMPARE(said.filter("3/1/4").last(), "write 3/1/4 40");  // 25 % keep it
        QCOMPARE(said.filter("3/1/3").last(), "write 3/1/3 0c4c");
    }

    void sensor_wanders_around_what_it_was() {
        house_t house(home_on_bus_t()
                          .item("i", "9.001", {}, {"3/1/1"}, "20")
                          .element("e", {{"temperature", "i"}})
                          .home);
        QStringList said = after(&house, 150 * 16);
        QCOMPARE(said.size(), qsizetype(16));
        said.removeDuplicates();
        QCOMPARE(said.size(), qsizetype(5));  // 19.8 to 20.2
        QVERIFY(house.take(write("3/1/1", "0c33")).isEmpty());
    }

    void wall_switch_toggles_the_first_lamp_now_and_then() {
        house_t house(lamp()
                          .element("e-lamp", {{"execute", "i-lamp"}})
                          .item("i-other", "1.001", "1/1/5", {"1/1/6"}, "0")
                          .element("e-other", {{"execute", "i-other"}})
                          .home);
        QCOMPARE(
            after(&house, 2 * house_t::switch_pause),
            (QStringList{"write 1/1/1 01", "write 1/1/2 01", "write 1/1/1 00", "write 1/1/2 00"}));
    }

    void home_that_is_not_on_the_bus_has_no_devices() {
        home_on_bus_t home;
        home.home.items.insert("i", {"1"});
        home.element("e", {{"execute", "i"}, {"level", "i"}});
        house_t house(home.home);
        QVERIFY(house.is_empty());
        QCOMPARE(after(&house, house_t::switch_pause), QStringList());
        QVERIFY(!house_t(lamp().home).is_empty());
    }

    void telegram_of_another_length_changes_nothing() {
        house_t house(dimmer().item("i-plain", "1.001", "1/1/8", {"1/1/9"}, "1").home);
        QVERIFY(house.take(write("1/1/8", "0c33")).isEmpty());
        house.take(write("1/1/3", "1a"));
        house.pass();
        house.take(write("1/1/3", "0c33"));
        QVERIFY(house.pass().isEmpty());
    }

 private:
    static home_on_bus_t lamp() {
        return home_on_bus_t().item("i-lamp", "1.001", "1/1/1", {"1/1/2"}, "0");
    }
    static home_on_bus_t dimmer() {
        return home_on_bus_t()
            .item("i-on", "1.001", "1/1/1", {"1/1/2"}, "0")
            .item("i-level", "5.001", "1/1/3", {"1/1/4"}, "0")
            .element("e", {{"execute", "i-on"}, {"level", "i-level"}});
    }
    /// What is said in so many passes.
    static QStringList after(house_t* _house, int _passes) {
        QStringList said;
        for (int i = 0; i < _passes; ++i) {
            said += texts_of(_house->pass());
        }
        return said;
    }
    static knx::telegram_t write(const char* _address, const char* _hex) {
        return {1, *knx::group_address_t::from_text(QString::fromLatin1(_address)),
                knx::command_t::write, QByteArray::fromHex(_hex), false};
    }
};

QTEST_GUILESS_MAIN(tst_house_t)
#include "tst_house_t.moc"
