#include "live/portions_t.h"

#include <QSignalSpy>
#include <QTest>

using database::live::portions_t;

/// Portions of two; what was announced is in lines.
class tst_portions_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        lines.clear();
        portions = std::make_unique<portions_t>([this](const QString& _id) { lines += _id; }, 2);
        announced = std::make_unique<QSignalSpy>(portions.get(), &portions_t::announced);
        over = std::make_unique<QSignalSpy>(portions.get(), &portions_t::over);
    }

    void nobody_listens_nobody_waits() {
        announced.reset();
        portions->add({"a", "b", "c", "d", "e"});
        QCOMPARE(lines, QStringList({"a", "b", "c", "d", "e"}));
        QVERIFY(!portions->is_busy());
        portions->settle();
        QCOMPARE(over->size(), 1);
    }

    void two_portions_are_under_way_until_one_has_left() {
        portions->add({"a", "b", "c", "d", "e", "f", "g"});
        QCOMPARE(lines, QStringList({"a", "b", "c", "d"}));
        QCOMPARE(announced->size(), 2);
        portions->taken();
        QCOMPARE(lines, QStringList({"a", "b", "c", "d", "e", "f"}));
        QCOMPARE(announced->size(), 3);
    }

    void over_comes_when_the_last_portion_has_left() {
        portions->add({"a", "b", "c", "d", "e"});
        for (int left = 3; left > 0; --left) {
            QCOMPARE(over->size(), 0);
            QVERIFY(portions->is_busy());
            portions->taken();
        }
        QCOMPARE(over->size(), 1);
        QVERIFY(!portions->is_busy());
        portions->taken();
        QCOMPARE(over->size(), 1);
    }

    void who_waits_already_keeps_the_place() {
        portions->add({"a", "b", "c", "d", "e", "f"});
        portions->add({"g", "e", "a"});
        take_all();
        QCOMPARE(lines, QStringList({"a", "b", "c", "d", "e", "f", "g", "a"}));
    }

    void first_ones_come_before_those_that_wait() {
        portions->add({"a", "b", "c", "d", "e", "f"});
        portions->add_first({"f", "x"});
        take_all();
        QCOMPARE(lines, QStringList({"a", "b", "c", "d", "f", "x", "e"}));
    }

    void the_last_one_comes_behind_all_that_wait() {
        portions->add({"a", "b", "c", "d", "u", "e"});
        portions->add_last("u");
        take_all();
        QCOMPARE(lines, QStringList({"a", "b", "c", "d", "e", "u"}));
    }

    void settling_announces_nothing_and_is_over_when_it_has_left() {
        portions->settle();
        QCOMPARE(lines, QStringList());
        QCOMPARE(announced->size(), 1);
        QCOMPARE(over->size(), 0);
        portions->taken();
        QCOMPARE(over->size(), 1);
    }

 private:
    void take_all() {
        while (portions->is_busy()) {
            portions->taken();
        }
    }

    QStringList lines;
    std::unique_ptr<portions_t> portions;
    std::unique_ptr<QSignalSpy> announced;
    std::unique_ptr<QSignalSpy> over;
};

QTEST_GUILESS_MAIN(tst_portions_t)
#include "tst_portions_t.moc"
