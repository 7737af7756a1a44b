#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QJsonDocument>
#include <QtTest>
#include <cstdlib>

#include "kit/password_of.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {

/// "torlanctl watch" of a user.
class watch_t {
 public:
    watch_t(const host_process_t& _host, const QString& _user, const QStringList& _more = {}) {
        process.start(QStringLiteral(TORLANCTL),
                      QStringList{"--data", _host.data(), "watch", "--user", _user} + _more);
        process.write(password_of(_user).toUtf8() + '\n');
        process.closeWriteChannel();
    }
    ~watch_t() {
        process.kill();
        process.waitForFinished();
    }
    Q_DISABLE_COPY_MOVE(watch_t)

    /// Waits until this has been written; what came before is forgotten.
    bool shows(const QByteArray& _text) {
        return comes(_text, &shown, &QProcess::readAllStandardOutput);
    }
    bool says(const QByteArray& _text) {
        return comes(_text, &told, &QProcess::readAllStandardError);
    }

    int ended() {
        return process.state() == QProcess::NotRunning || process.waitForFinished(30'000)
                   ? process.exitCode()
                   : -1;
    }
    int ended_by(int _signal) {
        ::kill(pid_t(process.processId()), _signal);
        return ended();
    }

    QProcess process;
    QByteArray shown;
    QByteArray told;

 private:
    bool comes(const QByteArray& _text, QByteArray* _kept, QByteArray (QProcess::*_read)()) {
        const auto is_there = [&]() {
            *_kept += (process.*_read)();
            return _kept->contains(_text);
        };
        const bool is_shown = QTest::qWaitFor(is_there, 15'000);
        _kept->remove(0, is_shown ? _kept->indexOf(_text) + _text.size() : 0);
        return is_shown;
    }
};

}  // namespace

/// torlanctl watch on a server that runs.
class tst_watch : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void values_and_changes_are_shown();
    void json_is_a_line_for_each_change();
    void colours_are_for_terminals_data();
    void colours_are_for_terminals();
    void only_what_is_named_is_shown();
    void stops_with_status_0_data();
    void stops_with_status_0();
    void closed_pipe_ends_it_quietly();
    void reader_that_stands_still_does_not_keep_it();
    void revoked_element_is_gone();
    void broker_that_starts_again_is_found_again();
    void server_that_starts_again_is_found_again();
    void wrong_password_ends_with_status_4();
    void removed_user_is_not_let_in_again();

 private:
    int set(const QString& _item, const QString& _value) {
        return host.control({"set", _item, _value});
    }

    host_process_t host;
};

void tst_watch::initTestCase() {
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_watch::cleanupTestCase() {
    QCOMPARE(host.stop(), 0);
}

void tst_watch::values_and_changes_are_shown() {
    watch_t watch(host, "alice");
    QVERIFY(watch.shows("  e-lamp  dim  40\n"));
    QVERIFY(watch.shows("  e-therm  thermo/setpoint  20.5\n"));
    QCOMPARE(set("i-dim", "41"), 0);
    QVERIFY(watch.shows("  e-lamp  dim  41\n"));
    QCOMPARE(watch.ended_by(SIGTERM), 0);
    QVERIFY(!watch.shown.contains('\x1b'));
    QCOMPARE(watch.process.readAllStandardError(), QByteArray());
}

void tst_watch::json_is_a_line_for_each_change() {
    watch_t watch(host, "bob", {"--json"});
    QVERIFY(watch.shows("}\n"));
    QVERIFY(watch.shows("}\n"));
    QCOMPARE(set("i-lamp", "1"), 0);
    QTRY_VERIFY((watch.shown += watch.process.readAllStandardOutput()).endsWith("}\n"));
    const QJsonObject line = QJsonDocument::fromJson(watch.shown).object();
    QCOMPARE(line["element"], "e-lamp");
    QCOMPARE(line["function"], "execute");
    QCOMPARE(line["value"], "1");
    QVERIFY(QDateTime::fromString(line["time"].toString(), Qt::ISODateWithMs).isValid());
}

void tst_watch::colours_are_for_terminals_data() {
    QTest::addColumn<QString>("no_color");
    QTest::addColumn<QByteArray>("shown");
    QTest::newRow("coloured") << "" << QByteArray("\x1b[36me-lamp\x1b[0m");
    QTest::newRow("not wanted") << "1" << QByteArray("  e-lamp  dim");
}

void tst_watch::colours_are_for_terminals() {
    QFETCH(QString, no_color);
    QFETCH(QByteArray, shown);
    const int screen = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    QVERIFY(::grantpt(screen) == 0 && ::unlockpt(screen) == 0);
    const int terminal = ::open(::ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("NO_COLOR", no_color);
    process.setProcessEnvironment(environment);
    process.setChildProcessModifier([terminal]() { ::dup2(terminal, STDOUT_FILENO); });
    process.start(QStringLiteral(TORLANCTL),
                  {"--data", host.data(), "watch", "e-lamp", "--user", "alice"});
    process.write(password_of("alice").toUtf8() + '\n');
    process.closeWriteChannel();
    QByteArray came;
    const auto is_shown = [&]() {
        char buffer[4096];
        const ssize_t count = ::read(screen, buffer, sizeof buffer);
        came += QByteArray(buffer, std::max<ssize_t>(count, 0));
        return came.contains(shown);
    };
    QVERIFY2(QTest::qWaitFor(is_shown, 15'000), came.constData());
    QCOMPARE(came.contains('\x1b'), no_color.isEmpty());
    ::kill(pid_t(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    ::close(terminal);
    ::close(screen);
}

void tst_watch::only_what_is_named_is_shown() {
    watch_t watch(host, "alice", {"e-night", "e-lmap"});
    QVERIFY(watch.says("e-lmap cannot be read now: 404 Not found element e-lmap.\n"));
    QVERIFY(watch.shows("  e-night  execute  false\n"));
    QCOMPARE(set("i-dim", "39"), 0);
    QCOMPARE(host.control({"put", "e-night", "execute=1", "--user", "alice"},
                          password_of("alice").toUtf8()),
             0);
    QVERIFY(watch.shows("  e-night  execute  true\n"));
    QVERIFY(!watch.shown.contains("e-lamp"));
}

void tst_watch::stops_with_status_0_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("hang-up") << SIGHUP;
}

void tst_watch::stops_with_status_0() {
    QFETCH(int, signal);
    watch_t watch(host, "alice");
    QVERIFY(watch.shows("e-therm"));
    QCOMPARE(watch.ended_by(signal), 0);
    QCOMPARE(watch.process.exitStatus(), QProcess::NormalExit);
}

void tst_watch::closed_pipe_ends_it_quietly() {
    // Nothing changes: the end itself is noticed.
    QProcess shell;
    shell.start("bash",
                {"-c", "\"$@\" <<<alice-password | grep -q -m 1 e-therm; echo ${PIPESTATUS[*]}",
                 "bash", TORLANCTL, "--data", host.data(), "watch", "--user", "alice"});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.readAllStandardOutput(), QByteArray("0 0\n"));
    QCOMPARE(shell.readAllStandardError(), QByteArray());
}

void tst_watch::reader_that_stands_still_does_not_keep_it() {
    int ends[2];
    QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
    QVERIFY(::fcntl(ends[1], F_SETPIPE_SZ, 4096) > 0);
    // Full but for less than a line.
    const QByteArray filling(4090, 'x');
    QCOMPARE(::write(ends[1], filling.constData(), size_t(filling.size())), filling.size());
    QProcess process;
    process.setChildProcessModifier([&ends]() { ::dup2(ends[1], STDOUT_FILENO); });
    process.start(QStringLiteral(TORLANCTL),
                  {"--data", host.data(), "watch", "e-lamp", "nothing", "--user", "alice"});
    process.write(password_of("alice").toUtf8() + '\n');
    process.closeWriteChannel();
    QByteArray told;
    const auto is_told = [&](const char* _what) {
        return QTest::qWaitFor(
            [&]() { return (told += process.readAllStandardError()).contains(_what); }, 15'000);
    };
    QVERIFY(is_told("nothing cannot be read now"));
    // It still hears the broker, and signals.
    QCOMPARE(::kill(pid_t(host.broker_pid()), SIGKILL), 0);
    QVERIFY(is_told("The connection is gone: "));
    ::kill(pid_t(process.processId()), SIGINT);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    ::close(ends[0]);
    ::close(ends[1]);
    // For those that come next.
    QTRY_COMPARE_WITH_TIMEOUT(set("i-dim", "38"), 0, 15'000);
}

void tst_watch::revoked_element_is_gone() {
    QCOMPARE(host.control({"grant", "bob", "e-night", "read"}), 0);
    watch_t watch(host, "bob");
    QVERIFY(watch.shows("  e-night  execute"));
    QCOMPARE(host.control({"revoke", "bob", "e-night"}), 0);
    QVERIFY(watch.shows("  e-night  is gone, or no longer to be read\n"));
}

void tst_watch::broker_that_starts_again_is_found_again() {
    watch_t watch(host, "alice");
    QVERIFY(watch.shows("  e-therm  thermo/setpoint  20.5\n"));
    QCOMPARE(::kill(pid_t(host.broker_pid()), SIGKILL), 0);
    QVERIFY(watch.says("The connection is gone: "));
    QTRY_COMPARE_WITH_TIMEOUT(set("i-set", "21.5"), 0, 15'000);
    QVERIFY(watch.shows("  e-therm  thermo/setpoint  21.5\n"));
    QCOMPARE(watch.ended_by(SIGINT), 0);
}

void tst_watch::server_that_starts_again_is_found_again() {
    // Longer away than one attempt lasts.
    watch_t watch(host, "alice", {"--wait", "3"});
    QVERIFY(watch.shows("e-therm"));
    QCOMPARE(host.stop(), 0);
    QVERIFY(watch.says("The connection is gone: "));
    QVERIFY(watch.says("Nobody lets alice in at "));
    QVERIFY2(host.start(), qPrintable(host.error()));
    // Its users are let in last.
    const auto changes = [&]() {
        watch.shown += watch.process.readAllStandardOutput();
        return watch.shown.contains("  e-lamp  dim  77\n");
    };
    QCOMPARE(set("i-dim", "77"), 0);
    QVERIFY2(QTest::qWaitFor(changes, 15'000),
             (watch.told + watch.process.readAllStandardError()).constData());
    QCOMPARE(watch.ended_by(SIGINT), 0);
}

void tst_watch::wrong_password_ends_with_status_4() {
    watch_t watch(host, "alice", {"--password-file", "/dev/null"});
    QCOMPARE(watch.ended(), 1);
    QCOMPARE(host.control({"watch", "--user", "alice"}, "wrong\n"), 4);
}

void tst_watch::removed_user_is_not_let_in_again() {
    watch_t watch(host, "bob", {"--wait", "1"});
    QVERIFY(watch.shows("e-lamp"));
    QCOMPARE(host.control({"user", "remove", "bob"}), 0);
    QVERIFY(watch.says(" does not let bob in: "));
    QCOMPARE(watch.ended(), 4);
}

QTEST_GUILESS_MAIN(tst_watch)
#include "tst_watch.moc"
