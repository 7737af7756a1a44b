#include "program/stop_signals_t.h"

#include <signal.h>
#include <sys/resource.h>

#include <QSignalSpy>
#include <QTest>
#include <memory>

using torlan::stop_signals_t;

class tst_stop_signals_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_of_the_signals_asks_once_data() {
        QTest::addColumn<int>("number");
        QTest::newRow("Ctrl-C") << SIGINT;
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("Ctrl-\\") << SIGQUIT;
        QTest::newRow("a closed terminal") << SIGHUP;
    }
    void each_of_the_signals_asks_once() {
        QFETCH(int, number);
        stop_signals_t signals_of_end;
        QSignalSpy asked(&signals_of_end, &stop_signals_t::stop_asked);
        QCOMPARE(::raise(number), 0);
        QCOMPARE(::raise(number), 0);
        QVERIFY(asked.wait());
        QCOMPARE(::raise(number), 0);
        QVERIFY(!asked.wait(20));
        QCOMPARE(asked.size(), 1);
    }

    void afterwards_they_end_the_process_as_ever() {
        { const stop_signals_t signals_of_end; }
        for (const int number : {SIGINT, SIGTERM, SIGQUIT, SIGHUP}) {
            struct sigaction action = {};
            QCOMPARE(::sigaction(number, nullptr, &action), 0);
            QVERIFY(action.sa_handler == SIG_DFL);
        }
    }

    void a_hang_up_that_is_ignored_stays_so() {
        QVERIFY(::signal(SIGHUP, SIG_IGN) != SIG_ERR);
        stop_signals_t signals_of_end;
        QSignalSpy asked(&signals_of_end, &stop_signals_t::stop_asked);
        QCOMPARE(::raise(SIGHUP), 0);
        QVERIFY(!asked.wait(20));
        QVERIFY(::signal(SIGHUP, SIG_DFL) == SIG_IGN);
    }

    void without_a_descriptor_they_end_the_process_as_ever() {
        QVERIFY(::signal(SIGTERM, SIG_DFL) != SIG_ERR);  // the test library has its own
        rlimit former = {};
        QCOMPARE(::getrlimit(RLIMIT_NOFILE, &former), 0);
        const rlimit none = {0, former.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &none), 0);
        const auto watch = std::make_unique<stop_signals_t>();
        QCOMPARE(::setrlimit(RLIMIT_NOFILE, &former), 0);
        struct sigaction action = {};
        QCOMPARE(::sigaction(SIGTERM, nullptr, &action), 0);
        QVERIFY(action.sa_handler == SIG_DFL);
    }
};

QTEST_GUILESS_MAIN(tst_stop_signals_t)
#include "tst_stop_signals_t.moc"
