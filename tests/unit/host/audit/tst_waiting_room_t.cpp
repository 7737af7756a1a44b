#include "audit/waiting_room_t.h"

#include <QTest>

using audit::waiting_room_t;

namespace {

waiting_room_t::maker_t nothing() {
    return []() { return QList<audit::entry_t>(); };
}

}  // namespace

class tst_waiting_room_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_comes_first_goes_first() {
        waiting_room_t room({});
        QVERIFY(room.is_empty());
        for (const char* name : {"a", "b", "c"}) {
            room.push(name, 1, [name]() {
                audit::entry_t entry;
                entry.user = name;
                return QList<audit::entry_t>{entry};
            });
        }
        const auto taken = room.take();
        QVERIFY(room.is_empty());
        QCOMPARE(taken.makers.size(), 3);
        QCOMPARE(taken.makers[0]()[0].user, QString("a"));
        QCOMPARE(taken.makers[2]()[0].user, QString("c"));
        QVERIFY(taken.lost.isEmpty());
    }

    void who_does_most_pushes_out_nobody_else() {
        waiting_room_t room({.of_user = 10});
        for (int i = 0; i < 1'000; ++i) {
            room.push("mallory", 0, nothing());
        }
        room.push("bob", 0, nothing());
        room.push("mallory/refused", 0, nothing());
        const auto taken = room.take();
        QCOMPARE(taken.makers.size(), 12);
        QCOMPARE(taken.lost, (QHash<QString, qint64>{{"mallory", 990}}));
        room.push("mallory", 0, nothing());
        QCOMPARE(room.take().makers.size(), 1);
    }

    void it_is_filling_when_half_of_anything_is_taken_data() {
        QTest::addColumn<waiting_room_t::limits_t>("limits");
        QTest::newRow("messages of one") << waiting_room_t::limits_t{.of_user = 4};
        QTest::newRow("bytes of one") << waiting_room_t::limits_t{.bytes_of_user = 40};
        QTest::newRow("messages") << waiting_room_t::limits_t{.of_all = 4};
        QTest::newRow("bytes") << waiting_room_t::limits_t{.bytes_of_all = 40};
    }
    void it_is_filling_when_half_of_anything_is_taken() {
        QFETCH(const waiting_room_t::limits_t, limits);
        waiting_room_t room(limits);
        room.push("a", 10, nothing());
        QVERIFY(!room.is_filling());
        room.push("a", 10, nothing());
        QVERIFY(room.is_filling());
        room.take();
        QVERIFY(!room.is_filling());
    }

    void bytes_are_bounded_for_each_and_in_all() {
        waiting_room_t room({.bytes_of_user = 100, .bytes_of_all = 150});
        room.push("a", 100, nothing());
        room.push("a", 1, nothing());
        room.push("b", 51, nothing());
        room.push("c", 50, nothing());
        const auto taken = room.take();
        QCOMPARE(taken.makers.size(), 2);
        QCOMPARE(taken.lost, (QHash<QString, qint64>{{"a", 1}, {"b", 1}}));
    }

    void the_number_is_bounded_in_all_and_losses_too() {
        waiting_room_t room({.of_all = 5, .parts = 2});
        for (int i = 0; i < 15; ++i) {
            room.push(QString::number(i), 0, nothing());
        }
        const auto taken = room.take();
        QCOMPARE(taken.makers.size(), 5);
        QCOMPARE(taken.lost.size(), 3);
        QCOMPARE(taken.lost.value(QString()), qint64(8));
    }

    void a_loss_alone_is_something_to_tell() {
        waiting_room_t room({.of_all = 0});
        room.push("a", 0, nothing());
        QVERIFY(!room.is_empty());
    }
};

QTEST_GUILESS_MAIN(tst_waiting_room_t)
#include "tst_waiting_room_t.moc"
