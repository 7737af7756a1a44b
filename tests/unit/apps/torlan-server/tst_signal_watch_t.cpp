#include "signal_watch_t.h"

#include <signal.h>

#include <QSignalSpy>
#include <QTest>

using torlan::signal_watch_t;

class tst_signal_watch_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_of_both_signals_asks_once_data() {
        QTest::addColumn<int>("number");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
    }
    void each_of_both_signals_asks_once() {
        QFETCH(int, number);
        signal_watch_t watch;
        QSignalSpy asked(&watch, &signal_watch_t::asked_to_stop);
        QCOMPARE(::raise(number), 0);
        QCOMPARE(::raise(number), 0);
        QVERIFY(asked.wait());
        QCOMPARE(::raise(number), 0);
        QVERIFY(!asked.wait(20));
        QCOMPARE(asked.size(), 1);
    }
};

QTEST_GUILESS_MAIN(tst_signal_watch_t)
#include "tst_signal_watch_t.moc"
