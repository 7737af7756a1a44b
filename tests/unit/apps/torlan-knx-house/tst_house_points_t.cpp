#include "house_points_t.h"

#include <QTest>

#include "home_on_bus.h"

using knx::group_address_t;
using torlan::house_points_t;

namespace {

group_address_t address(const char* _text) {
    return *group_address_t::from_text(QString::fromLatin1(_text));
}

}  // namespace

class tst_house_points_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void values_are_those_of_the_home() {
        house_points_t points(home_on_bus_t()
                                  .item("i-level", "5.001", "1/1/1", {"1/1/2"}, "80")
                                  .item("i-warm", "9.001", {}, {"3/1/1"}, "21.5")
                                  .item("i-new", "9.001", {}, {"3/1/2"}, {})
                                  .item("i-odd", "99.001", {}, {"3/1/3"}, "1")
                                  .home);
        QCOMPARE(points.number("i-level"), 80.0);
        QCOMPARE(points.number("i-warm"), 21.5);
        QCOMPARE(points.number("i-new"), 0.0);
        QCOMPARE(points.number("i-nobody"), 0.0);
        QVERIFY(points.has("i-new") && !points.has("i-odd"));
        QCOMPARE(texts_of(points.all_reports()),
                 (QStringList{"write 1/1/2 cc", "write 3/1/2 0000", "write 3/1/1 0c33"}));
    }

    void change_is_reported_once() {
        house_points_t points(
            home_on_bus_t().item("i", "5.001", "1/1/1", {"1/1/2", "1/1/9"}, "0").home);
        points.set("i", 40);
        points.set("i", 40);
        points.set("i-nobody", 1);
        QCOMPARE(texts_of(points.take_reports()), QStringList{"write 1/1/2 66"});
        QVERIFY(points.take_reports().isEmpty());
        points.set("i", 1000);
        QVERIFY(points.take_reports().isEmpty());
        QCOMPARE(points.number("i"), 40.0);
    }

    void what_was_sent_is_reported_whatever_it_was() {
        house_points_t points(home_on_bus_t().item("i", "1.001", "1/1/1", {"1/1/2"}, "1").home);
        points.accept("i", QByteArray(1, '\1'));
        QCOMPARE(texts_of(points.take_reports()), QStringList{"write 1/1/2 01"});
        points.accept("i", QByteArray::fromHex("0c33"));
        points.accept("i-nobody", QByteArray(1, '\1'));
        QVERIFY(points.take_reports().isEmpty());
    }

    // It would be taken for somebody's command.
    void nothing_is_reported_where_others_write() {
        house_points_t points(home_on_bus_t().item("i", "1.001", "1/1/1", {}, "0").home);
        points.set("i", 1);
        QVERIFY(points.take_reports().isEmpty() && points.all_reports().isEmpty());
        QCOMPARE(points.number("i"), 1.0);
    }

    void question_is_answered_by_one_device() {
        const house_points_t points(home_on_bus_t()
                                        .item("i-a", "1.001", "1/1/1", {"1/1/2"}, "1")
                                        .item("i-b", "1.001", "1/1/3", {"1/1/2"}, "0")
                                        .home);
        QCOMPARE(texts_of({*points.answer(address("1/1/2"))}), QStringList{"response 1/1/2 01"});
        QCOMPARE(texts_of({*points.answer(address("1/1/1"))}), QStringList{"response 1/1/1 01"});
        QVERIFY(!points.answer(address("7/7/7")));
    }

    void command_is_what_others_would_send() {
        const house_points_t points(home_on_bus_t()
                                        .item("i", "1.001", "1/1/1", {"1/1/2"}, "0")
                                        .item("i-sensor", "1.001", {}, {"1/1/3"}, "0")
                                        .home);
        QCOMPARE(texts_of({*points.command("i", 1)}), QStringList{"write 1/1/1 01"});
        QVERIFY(!points.command("i-sensor", 1) && !points.command("i-nobody", 1));
        QVERIFY(!points.command("i", 7));
    }
};

QTEST_GUILESS_MAIN(tst_house_points_t)
#include "tst_house_points_t.moc"
