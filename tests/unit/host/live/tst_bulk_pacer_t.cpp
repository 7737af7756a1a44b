#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>

#include "live/bulk_pacer_t.h"

using database::live::bulk_pacer_t;
using std::chrono::milliseconds;

class tst_bulk_pacer_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_first_is_due_at_once() {
        bulk_pacer_t pacer(milliseconds(10'000));
        QSignalSpy due(&pacer, &bulk_pacer_t::due);
        pacer.ask();
        QCOMPARE(due.size(), 1);
        pacer.ask();
        pacer.ask();
        QCOMPARE(due.size(), 1);
    }

    void all_that_was_asked_meanwhile_is_due_once_a_gap_later() {
        bulk_pacer_t pacer(milliseconds(100));
        QSignalSpy due(&pacer, &bulk_pacer_t::due);
        QElapsedTimer clock;
        clock.start();
        pacer.ask();
        for (int i = 0; i < 5; ++i) {
            pacer.ask();
        }
        QVERIFY(due.wait());
        QVERIFY(clock.elapsed() >= 100);
        QCOMPARE(due.size(), 2);
        QVERIFY(!due.wait(150));
        pacer.ask();
        QCOMPARE(due.size(), 3);
    }

    /// The gap counts from the last one that was told, not from the last one that was asked.
    void a_stream_is_due_again_and_again() {
        bulk_pacer_t pacer(milliseconds(50));
        QSignalSpy due(&pacer, &bulk_pacer_t::due);
        QTimer stream;
        connect(&stream, &QTimer::timeout, &pacer, &bulk_pacer_t::ask);
        stream.start(5);
        QTRY_VERIFY(due.size() >= 4);
    }
};

QTEST_GUILESS_MAIN(tst_bulk_pacer_t)
#include "tst_bulk_pacer_t.moc"
