// Running programs.
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstring>

#include "fakes/recording_logger_t.h"
#include "utility/torlan_option_t.h"
#include "utility/utility_t.h"

using fakes::recording_logger_t;
using utility::torlan_option_t;
using utility::utility_t;

namespace {

/// Stands for "/data/local", which no desktop has; empty: nothing stands for it.
char embedded_folder[4096] = "";

const char* real_path(const char* _path) {
    const bool is_embedded =
        std::strcmp(_path, "/data/local") == 0 || std::strcmp(_path, "/data/local/.") == 0;
    return embedded_folder[0] != 0 && is_embedded ? embedded_folder : _path;
}

int open_real(const char* _path, int _flags, va_list _more) {
    const unsigned mode = (_flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(_more, unsigned) : 0;
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, real_path(_path), _flags, mode));
}

}  // namespace

// The process library enters a program's folder with the first, between fork and exec; since Qt 6.5
// it opens the folder with one of the others beforehand.
extern "C" int chdir(const char* _path) noexcept {
    return static_cast<int>(syscall(SYS_chdir, real_path(_path)));
}

extern "C" int open(const char* _path, int _flags, ...) {
    va_list more;
    va_start(more, _flags);
    const int descriptor = open_real(_path, _flags, more);
    va_end(more);
    return descriptor;
}

// With 64 bits for offsets on a 32-bit machine the one above has this name already.
#if !defined(_FILE_OFFSET_BITS) || _FILE_OFFSET_BITS != 64
extern "C" int open64(const char* _path, int _flags, ...) {
    va_list more;
    va_start(more, _flags);
    const int descriptor = open_real(_path, _flags | O_LARGEFILE, more);
    va_end(more);
    return descriptor;
}
#endif

namespace {

const QString source = QStringLiteral("server/utility/utility_t");

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

}  // namespace

class tst_utility_t_process : public QObject {
    Q_OBJECT

 private Q_SLOTS:
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
        QTest::failOnWarning(QRegularExpression(QStringLiteral("still running")));
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

    void the_standard_input_of_a_program_stays_open() {
        QCOMPARE(shell("read word; echo closed", 300).output, QString());
    }

    void only_the_embedded_platform_runs_programs_in_its_folder_data() {
        QTest::addColumn<QString>("platform");
        QTest::addColumn<bool>("embedded");

        QTest::newRow("embedded") << QStringLiteral("android_embedded") << true;
        QTest::newRow("android") << QStringLiteral("android") << false;
        QTest::newRow("other case") << QStringLiteral("Android_Embedded") << false;
        QTest::newRow("desktop") << QStringLiteral("linux") << false;
        QTest::newRow("none") << QString() << false;
    }

    void only_the_embedded_platform_runs_programs_in_its_folder() {
        QFETCH(const QString, platform);
        QFETCH(const bool, embedded);
        const QTemporaryDir folder;
        const QString path = QDir(folder.path()).canonicalPath();
        qstrncpy(embedded_folder, path.toUtf8().constData(), sizeof(embedded_folder));
        torlan_option_t::createInstance(nullptr, platform, {}, {}, {}, {}, {}, nullptr);
        QCOMPARE(shell("pwd").output, embedded ? path : QDir::currentPath());
        torlan_option_t::destroyInstance();
        embedded_folder[0] = 0;
    }

    void nothing_needs_a_logger() { QCOMPARE(shell("exit 3").code, 3); }
};

QTEST_GUILESS_MAIN(tst_utility_t_process)
#include "tst_utility_t_process.moc"
