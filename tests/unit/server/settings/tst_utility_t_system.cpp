#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <cerrno>
#include <csignal>

#include "fakes/recording_logger_t.h"
#include "utility/torlan_option_t.h"
#include "utility/utility_t.h"

using fakes::recording_logger_t;
using utility::torlan_option_t;
using utility::utility_t;

namespace {

const QString source = QStringLiteral("server/utility/utility_t");

bool matches(const QString& _text, const char* _pattern) {
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(_pattern)))
        .match(_text)
        .hasMatch();
}

struct execution_t {
    int code = -1;
    QString output;
    QString error;
};

execution_t run(const QString& _program, const QStringList& _arguments, int _timeout = 20000) {
    execution_t result;
    result.code =
        utility_t::execProcess(_program, _arguments, _timeout, result.output, result.error);
    return result;
}

execution_t shell(const char* _script, int _timeout = 20000) {
    return run(QStringLiteral("sh"), {QStringLiteral("-c"), QLatin1String(_script)}, _timeout);
}

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

bool midnight_is_near() {
    return QTime::currentTime() > QTime(23, 59, 50);
}

}  // namespace

class tst_utility_t_system : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void identifiers_are_32_hexadecimal_digits() {
        for (int i = 0; i < 200; ++i) {
            QVERIFY(matches(utility_t::generateUUId(), "[0-9a-f]{32}"));
            QVERIFY(matches(utility_t::generateInstallationId(), "[0-9a-f]{32}"));
        }
    }

    void number_identifiers_are_32_to_64_decimal_digits() {
        bool longer = false;
        for (int i = 0; i < 200; ++i) {
            const QString id = utility_t::generateNumberUUId();
            QVERIFY2(matches(id, "[0-9]{32,64}"), qPrintable(id));
            longer = longer || id.size() > 32;
        }
        QVERIFY(longer);
    }

    void identifiers_never_repeat() {
        QSet<QString> ids;
        for (int i = 0; i < 100; ++i) {
            ids << utility_t::generateUUId() << utility_t::generateNumberUUId()
                << utility_t::generateInstallationId();
        }
        QCOMPARE(ids.size(), 300);
    }

    void a_text_hash_is_the_sha1_of_its_utf8() {
        QCOMPARE(utility_t::getHash(QString()),
                 QStringLiteral("da39a3ee5e6b4b0d3255bfef95601890afd80709"));
        QCOMPARE(utility_t::getHash(QString(QChar(0xe8))),
                 QStringLiteral("151666e2e2873be7fc40e7ae214f38b00bc50183"));
    }

    void an_object_hash_does_not_depend_on_the_order_of_building() {
        QJsonObject one{{QStringLiteral("a"), 1}};
        one.insert(QStringLiteral("b"), QStringLiteral("x"));
        QJsonObject other{{QStringLiteral("b"), QStringLiteral("x")}};
        other.insert(QStringLiteral("a"), 1);
        QCOMPARE(utility_t::getHash(one),
                 QStringLiteral("6773f537e12881321ac5aca774c9ac2dd80f3a12"));
        QCOMPARE(utility_t::getHash(other), utility_t::getHash(one));
    }

    void a_file_hash_uses_the_given_algorithm() {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("file")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("torlan\n"), 7);
        file.close();
        QCOMPARE(utility_t::getHash(file.fileName(), QCryptographicHash::Md5),
                 QStringLiteral("066ec5d35a8f8279232af0532214c381"));
        QCOMPARE(utility_t::getHash(file.fileName(), QCryptographicHash::Sha256),
                 QStringLiteral("5a1ef03e234bc94abf109b81dbd5a785"
                                "7a2cf654db97a4a014b57b45ec3e1d3c"));
    }

    void an_unreadable_file_has_an_empty_hash_and_no_log_line() {
        const recording_logger_t logger;
        const QTemporaryDir folder;
        QCOMPARE(utility_t::getHash(folder.filePath(QStringLiteral("no")), QCryptographicHash::Md5),
                 QString());
        QCOMPARE(utility_t::getHash(folder.path(), QCryptographicHash::Md5), QString());
        QVERIFY(logger.lines().isEmpty());
    }

    void the_outputs_of_a_program_come_simplified() {
        const execution_t done = shell("printf 'a  b\\n'; printf ' c\\n\\td ' >&2");
        QCOMPARE(done.output, QStringLiteral("a b"));
        QCOMPARE(done.error, QStringLiteral("c d"));
        QCOMPARE(done.code, 0);
    }

    void the_exit_code_and_the_environment_are_the_programs() {
        qputenv("TORLAN_TEST_WORD", "found");
        const execution_t done = shell("echo $TORLAN_TEST_WORD; exit 7");
        QCOMPARE(done.output, QStringLiteral("found"));
        QCOMPARE(done.code, 7);
    }

    void a_run_is_logged_in_three_lines() {
        const recording_logger_t logger;
        shell("echo  %1; echo %2 >&2; exit 4");
        const QString run = QStringLiteral("sh -c echo  %1; echo %2 >&2; exit 4 ");
        const auto line = [&run](const char* _rest, int _line) {
            return recording_logger_t::line_t{run + QLatin1String(_rest), 6,
                                              QStringLiteral("execProcess"), source, _line};
        };
        const QList<recording_logger_t::line_t> expected{line("EXIT CODE: 4", 539),
                                                         line("STANDARD OUTPUT: %1", 540),
                                                         line("STANDARD ERROR : %2", 541)};
        QCOMPARE(logger.lines(), expected);
    }

    void a_late_program_is_ended_and_counts_as_success() {
        QElapsedTimer timer;
        timer.start();
        const execution_t done = shell("echo $$; exec sleep 30", 500);
        QCOMPARE(done.code, 0);
        QVERIFY(timer.elapsed() >= 490);
        QVERIFY(timer.elapsed() < 15000);
        const int pid = done.output.toInt();
        QVERIFY(pid > 0);
        QCOMPARE(kill(pid, 0), -1);
        QCOMPARE(errno, ESRCH);
    }

    void without_a_limit_a_program_may_take_its_time() {
        QCOMPARE(shell("sleep 0.2; echo done", -1).output, QStringLiteral("done"));
    }

    void a_program_that_is_not_there_has_the_exit_code_of_qprocess() {
        const recording_logger_t logger;
        const QString program = QStringLiteral("torlan-no-such-program");
        QProcess process;
        process.start(program, QStringList());
        QVERIFY(!process.waitForFinished(2000));

        const execution_t done = run(program, {});
        QCOMPARE(done.code, process.exitCode());
        QVERIFY(done.output.isEmpty());
        QVERIFY(done.error.isEmpty());
        QCOMPARE(logger.lines().size(), 3);
    }

    void only_the_embedded_platform_runs_programs_in_its_folder_data() {
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("folder");

        // Where the folder is missing the program cannot start and tells nothing.
        const QString data = QStringLiteral("/data/local");
        QTest::newRow("embedded") << QStringLiteral("android_embedded")
                                  << (QDir(data).exists() ? data : QString());
        QTest::newRow("android") << QStringLiteral("android") << QDir::currentPath();
        QTest::newRow("desktop") << QStringLiteral("linux") << QDir::currentPath();
    }

    void only_the_embedded_platform_runs_programs_in_its_folder() {
        QFETCH(const QString, platform);
        QFETCH(const QString, folder);
        torlan_option_t::createInstance(nullptr, platform, {}, {}, {}, {}, {}, nullptr);
        QCOMPARE(shell("pwd").output, folder);
        torlan_option_t::destroyInstance();
    }

    void waits_serve_events_and_are_logged() {
        if (midnight_is_near()) {
            QSKIP("waits end at once behind midnight");
        }
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
        if (midnight_is_near()) {
            QSKIP("waits end at once behind midnight");
        }
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
        if (midnight_is_near()) {
            QSKIP("waits end at once behind midnight");
        }
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

    void a_thread_with_a_dispatcher_has_an_event_loop() {
        const recording_logger_t logger;
        QVERIFY(utility_t::HaveEventLoop(QThread::currentThread()));
        QThread idle;
        QVERIFY(!utility_t::HaveEventLoop(&idle));
        QVERIFY(!utility_t::HaveEventLoop(nullptr));
        const QString function = QStringLiteral("HaveEventLoop");
        QVERIFY(logger.contains(QStringLiteral("Have event loop"), 2, function, source, 479));
        QVERIFY(logger.contains(QStringLiteral("Not have event loop"), 2, function, source, 474));
        QCOMPARE(logger.count(QStringLiteral("Not have event loop")), 2);
    }

    void nothing_needs_a_logger() {
        QCOMPARE(shell("exit 3").code, 3);
        utility_t::amSleep(0);
        QVERIFY(utility_t::HaveEventLoop(QThread::currentThread()));
    }
};

QTEST_GUILESS_MAIN(tst_utility_t_system)
#include "tst_utility_t_system.moc"
