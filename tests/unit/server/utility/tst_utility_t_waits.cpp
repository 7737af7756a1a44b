// Waits that keep serving events.
#include <time.h>
#include <unistd.h>

#include <QDateTime>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTest>
#include <QTime>
#include <QTimer>

#include "fakes/recording_logger_t.h"
#include "utility/utility_t.h"

using fakes::recording_logger_t;
using utility::utility_t;

namespace {

const QString source = QStringLiteral("server/utility/utility_t");

/// Keeps the event loop of this thread busy without a pause from start() on.
class flood_t : public QObject {
 public:
    void start() {
        running = true;
        QMetaObject::invokeMethod(this, &flood_t::again, Qt::QueuedConnection);
    }
    void stop() { running = false; }

 private:
    void again() {
        if (running) {
            start();
        }
    }

    bool running = false;
};

/// Moves this process into a time zone where it is between noon and one: waits compare local times
/// of day, and one that reaches behind midnight ends at once.
void make_it_noon() {
    const int hour = QDateTime::currentDateTimeUtc().time().hour();
    qputenv("TZ", "NOON" + QByteArray::number(hour - 12));
    tzset();
}

/// Milliseconds from now to a second after midnight.
int into_tomorrow() {
    return QTime::currentTime().msecsTo(QTime(23, 59, 59, 999)) + 1001;
}

}  // namespace

class tst_utility_t_waits : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() {
        make_it_noon();
        const int hour = QTime::currentTime().hour();
        QVERIFY(hour == 12 || hour == 13);
    }

    void waits_serve_events_and_are_logged() {
        const recording_logger_t logger;
        int served = 0;
        QTimer::singleShot(20, this, [&served]() { ++served; });
        QElapsedTimer timer;
        timer.start();
        utility_t::amSleep(150);
        QCOMPARE(served, 1);
        QVERIFY(timer.elapsed() >= 149);
        utility_t::aSleep(0);
        QCOMPARE(logger.lines().size(), 2);
        QVERIFY(logger.contains(QStringLiteral("Wait 150 millisec...."), 6,
                                QStringLiteral("amSleep"), source, 124));
        QVERIFY(logger.contains(QStringLiteral("Wait 0 sec...."), 6, QStringLiteral("aSleep"),
                                source, 117));
    }

    void a_wait_of_seconds_serves_events_in_slices_of_100_ms() {
        flood_t flood;
        QTimer::singleShot(std::chrono::milliseconds(985), Qt::PreciseTimer, &flood,
                           [&flood]() { flood.start(); });
        QElapsedTimer timer;
        timer.start();
        utility_t::aSleep(1);
        flood.stop();
        // The flood fills the slice that began before the end.
        QVERIFY2(timer.elapsed() >= 1080, qPrintable(QString::number(timer.elapsed())));
    }

    void a_wait_of_milliseconds_serves_events_in_slices_of_50_ms() {
        qint64 shortest = 1000;
        for (int i = 0; i < 5; ++i) {
            flood_t flood;
            flood.start();
            QElapsedTimer timer;
            timer.start();
            utility_t::amSleep(2);
            flood.stop();
            shortest = qMin(shortest, timer.elapsed());
        }
        QVERIFY2(shortest >= 50 && shortest < 100, qPrintable(QString::number(shortest)));
    }

    void queued_calls_and_sockets_are_served_during_a_wait() {
        int pipe_ends[2] = {-1, -1};
        QCOMPARE(::pipe(pipe_ends), 0);
        int called = 0;
        int read = 0;
        QSocketNotifier notifier(pipe_ends[0], QSocketNotifier::Read);
        connect(&notifier, &QSocketNotifier::activated, this, [&]() {
            char byte = 0;
            read += static_cast<int>(::read(pipe_ends[0], &byte, 1));
        });
        QMetaObject::invokeMethod(
            this, [&called]() { ++called; }, Qt::QueuedConnection);
        QCOMPARE(::write(pipe_ends[1], "x", 1), 1);
        utility_t::amSleep(50);
        QCOMPARE(called, 1);
        QCOMPARE(read, 1);
        ::close(pipe_ends[0]);
        ::close(pipe_ends[1]);
    }

    void a_wait_into_the_next_day_ends_at_once() {
        const recording_logger_t logger;
        const int milliseconds = into_tomorrow();
        const int seconds = milliseconds / 1000 + 1;
        QElapsedTimer timer;
        timer.start();
        utility_t::amSleep(milliseconds);
        utility_t::aSleep(seconds);
        QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY(logger.contains(QStringLiteral("Wait %1 millisec....").arg(milliseconds), 6,
                                QStringLiteral("amSleep"), source, 124));
        QVERIFY(logger.contains(QStringLiteral("Wait %1 sec....").arg(seconds), 6,
                                QStringLiteral("aSleep"), source, 117));
    }

    void nothing_needs_a_logger() { utility_t::amSleep(0); }
};

QTEST_GUILESS_MAIN(tst_utility_t_waits)
#include "tst_utility_t_waits.moc"
