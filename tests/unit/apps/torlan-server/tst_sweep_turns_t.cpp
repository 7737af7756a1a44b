#include "sweep_turns_t.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

using namespace std::chrono_literals;
using torlan::sweep_turns_t;

class tst_sweep_turns_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void everybody_has_one_turn_with_pauses() {
        sweep_turns_t turns(20ms);
        turns.know({"carol", "alice"});
        turns.know({"bob", "alice"});
        follow(turns);
        QElapsedTimer since;
        since.start();
        turns.begin();
        QTRY_COMPARE(seen, (QStringList{"alice", "bob", "carol"}));
        QVERIFY(since.elapsed() >= 35);
        QTest::qWait(60);
        QCOMPARE(seen.size(), 3);
    }

    void who_waits_has_a_turn_however_often_it_begins_anew() {
        sweep_turns_t turns(20ms);
        turns.know({"alice", "bob", "carol"});
        follow(turns);
        connect(&turns, &sweep_turns_t::turn_of, &turns, &sweep_turns_t::begin,
                Qt::QueuedConnection);
        turns.begin();
        QTRY_VERIFY(seen.size() >= 7);
        QCOMPARE(seen.first(7),
                 (QStringList{"alice", "bob", "carol", "alice", "bob", "carol", "alice"}));
    }

    void what_is_asked_meanwhile_goes_on_with_pauses() {
        sweep_turns_t turns(20ms);
        turns.know({"alice", "bob"});
        follow(turns);
        turns.begin();
        turns.begin();
        QCOMPARE(seen, QStringList{"alice"});
        QTRY_COMPARE(seen, (QStringList{"alice", "bob", "alice"}));
    }

    void nobody_has_no_turn() {
        sweep_turns_t turns(1ms);
        follow(turns);
        turns.begin();
        QTest::qWait(20);
        QVERIFY(seen.isEmpty());
        turns.know({"alice"});
        turns.begin();
        QCOMPARE(seen, QStringList{"alice"});
    }

    void more_names_than_are_remembered_are_told() {
        sweep_turns_t turns;
        QStringList names;
        for (std::size_t i = 0; i < sweep_turns_t::most_names; ++i) {
            names += QString::number(i);
        }
        turns.know(names);
        turns.know(names);
        QVERIFY(turns.is_complete());
        turns.know({"one more"});
        QVERIFY(!turns.is_complete());
    }

 private:
    void follow(const sweep_turns_t& _turns) {
        seen.clear();
        connect(&_turns, &sweep_turns_t::turn_of, this,
                [this](const QString& _user) { seen += _user; });
    }

    QStringList seen;
};

QTEST_GUILESS_MAIN(tst_sweep_turns_t)
#include "tst_sweep_turns_t.moc"
