#include <QSignalSpy>
#include <QTest>

#include "endpoint/drivers_turn_t.h"

using comunication::drivers_turn_t;

class tst_drivers_turn_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void it_is_over_behind_what_the_driver_queues_behind_its_own_calls() {
        const auto begins = {&drivers_turn_t::begin, &drivers_turn_t::begin_read};
        for (const auto& begin : begins) {
            drivers_turn_t turn;
            QStringList order;
            // As a read does: the slot, the driver's answer, its relay.
            QMetaObject::invokeMethod(
                this,
                [&]() { queue(&order, "answer", [&]() { queue(&order, "relay", []() {}); }); },
                Qt::QueuedConnection);
            connect(&turn, &drivers_turn_t::over, this, [&order]() { order += "over"; });
            QMetaObject::invokeMethod(&turn, begin, Qt::QueuedConnection);
            QTRY_VERIFY(order.contains("over"));
            QCOMPARE(order, (QStringList{"answer", "relay", "over"}));
        }
    }

    void a_read_waits_for_nothing_that_a_write_sets_off() {
        drivers_turn_t turn;
        QStringList order;
        connect(&turn, &drivers_turn_t::over, this, [&order]() { order += "over"; });
        turn.begin_read();
        queue(&order, "1", [&]() { queue(&order, "2", [&]() { queue(&order, "3", []() {}); }); });
        QTRY_VERIFY(order.contains("3"));
        QCOMPARE(order, (QStringList{"1", "over", "2", "3"}));
    }

    void a_read_is_not_over_before_a_write_that_began_before_it() {
        drivers_turn_t turn;
        QStringList order;
        connect(&turn, &drivers_turn_t::over, this, [&order]() { order += "over"; });
        turn.begin();
        turn.begin_read();
        queue(&order, "1", [&]() { queue(&order, "2", [&]() { queue(&order, "3", []() {}); }); });
        QTRY_COMPARE(order.size(), 5);
        QCOMPARE(order, (QStringList{"1", "2", "3", "over", "over"}));
    }

    void each_begin_is_over_once() {
        drivers_turn_t turn;
        QSignalSpy over(&turn, &drivers_turn_t::over);
        turn.begin();
        turn.begin();
        QCOMPARE(over.size(), 0);
        QTRY_COMPARE(over.size(), 2);
        QCoreApplication::processEvents();
        QCOMPARE(over.size(), 2);
    }

 private:
    template <class Then>
    void queue(QStringList* _order, const char* _word, Then _then) {
        QMetaObject::invokeMethod(
            this,
            [_order, _word, _then]() {
                *_order += QString::fromLatin1(_word);
                _then();
            },
            Qt::QueuedConnection);
    }
};

QTEST_GUILESS_MAIN(tst_drivers_turn_t)
#include "tst_drivers_turn_t.moc"
