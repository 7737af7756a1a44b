#include <signal.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include "supervisor_t.h"

using torlan::options_t;
using torlan::supervisor_t;

/// The two programs are lines of shell that do as each slot says; they note how they were called.
class tst_supervisor_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        options = {};
        web.reset();
        options.data = folder->path();
        options.config_port = 4711;
        options.server = QStringList{"--port", "1"};
        options.once = QStringList{"--import", "file"};
        program("torlan-config", ready + lasting);
        program("torlan-server", ready + lasting);
    }
    void cleanup() { supervisor.reset(); }

    void server_starts_when_the_other_one_is_ready() {
        program("torlan-config", "sleep 0.2; " + ready + lasting);
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QCOMPARE(calls("torlan-config"), QStringList{"--file settings --port 4711"});
        QCOMPARE(calls("torlan-server"),
                 QStringList{QString("--data %1 --config-port 4711 --port 1 --import file")
                                 .arg(folder->path())});
    }

    void console_starts_between_and_the_server_tells_its_address() {
        web = torlan::web_t{"pages", 8, 9};
        program("torlan-web", ready + lasting);
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QCOMPARE(calls("torlan-web"),
                 QStringList{QString("--pages pages --facts %1/console.json --port 8 --ws-port 9")
                                 .arg(folder->path())});
        QVERIFY2(calls("torlan-server")
                     .constFirst()
                     .contains("--console http://127.0.0.1:8/ --ws-port 9 --port 1"),
                 qPrintable(calls("torlan-server").constFirst()));
        QCOMPARE(supervisor->stop(), 0);
        QVERIFY(!is_running("torlan-web"));
    }

    void websockets_that_were_asked_for_are_not_asked_for_twice() {
        web = torlan::web_t{"pages", 8, 9};
        options.ws_port = 9;
        program("torlan-web", ready + lasting);
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QVERIFY(!calls("torlan-server").constFirst().contains("--ws-port"));
    }

    void console_that_cannot_start_is_told_and_the_rest_runs() {
        web = torlan::web_t{"pages", 8, 9};
        program("torlan-web", "exit 1");
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QVERIFY(!calls("torlan-server").constFirst().contains("--console"));
        QCOMPARE(told->size(), 1);
        QVERIFY(told->constFirst()[0].toString().startsWith("there is no console"));
    }

    void console_that_dies_is_started_again_and_nothing_else() {
        web = torlan::web_t{"pages", 8, 9};
        program("torlan-web", ready + lasting);
        start();
        QTRY_VERIFY(supervisor->was_ready());
        const pid_t server = process("torlan-server");
        ::kill(process("torlan-web"), SIGKILL);
        QTRY_COMPARE(calls("torlan-web").size(), 2);
        QTRY_COMPARE(told->size(), 2);
        QCOMPARE(process("torlan-server"), server);
        QCOMPARE(calls("torlan-server").size(), 1);
    }

    void both_end_with_it() {
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QCOMPARE(supervisor->stop(), 0);
        QVERIFY(!is_running("torlan-config") && !is_running("torlan-server"));
        QVERIFY(ended->isEmpty());
    }

    void status_of_a_server_that_could_not_save_is_handed_on() {
        program("torlan-server", "trap 'exit 1' TERM; " + ready + "while :; do sleep 0.05; done");
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QCOMPARE(supervisor->stop(), 1);
    }

    void failed_configuration_server_ends_it() {
        program("torlan-config", "exit 1");
        start();
        QTRY_COMPARE(ended->size(), 1);
        QCOMPARE(ended->first()[0].toInt(), 1);
        QVERIFY(calls("torlan-server").isEmpty());
    }

    void failed_server_ends_it_with_its_status_data() {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("status");
        QTest::newRow("cannot") << QByteArray("exit 1") << 1;
        QTest::newRow("wrong call") << QByteArray("exit 2") << 2;
        QTest::newRow("asked to end") << QByteArray("exit 0") << 0;
        QTest::newRow("killed") << QByteArray("kill -9 $$") << 1;
    }

    void failed_server_ends_it_with_its_status() {
        QFETCH(QByteArray, line);
        QFETCH(int, status);
        program("torlan-server", line);
        start();
        QTRY_COMPARE(ended->size(), 1);
        QCOMPARE(ended->first()[0].toInt(), status);
        QVERIFY(!is_running("torlan-config"));
        QCOMPARE(told->isEmpty(), line != "kill -9 $$");
    }

    void killed_server_is_started_again_without_its_import() {
        start();
        QTRY_VERIFY(supervisor->was_ready());
        ::kill(process("torlan-server"), SIGKILL);
        QTRY_COMPARE(calls("torlan-server").size(), 2);
        QVERIFY(!calls("torlan-server").last().contains("--import"));
        QTRY_COMPARE(told->size(), 2);
        QVERIFY(told->last()[0].toString().contains("started again"));
        QVERIFY(ended->isEmpty());
    }

    // Its word and its end may come together.
    void one_that_dies_right_after_it_was_ready_has_not_failed() {
        program("torlan-server", "[ -e '" + folder->filePath("died").toUtf8() + "' ] || { touch '" +
                                     folder->filePath("died").toUtf8() + "'; " + ready +
                                     "kill -9 $$; }; " + ready + lasting);
        start();
        QTRY_COMPARE(calls("torlan-server").size(), 2);
        QVERIFY(!calls("torlan-server").last().contains("--import"));
        QVERIFY(ended->isEmpty());
        QVERIFY(supervisor->was_ready());
    }

    void stop_tells_that_it_was_asked_for() {
        start();
        QVERIFY(!supervisor->was_stopped());
        supervisor->stop();
        QVERIFY(supervisor->was_stopped());
    }

    void killed_configuration_server_is_started_again_each_time() {
        start();
        QTRY_VERIFY(supervisor->was_ready());
        for (int life = 2; life <= 4; ++life) {
            ::kill(process("torlan-config"), SIGKILL);
            QTRY_COMPARE(calls("torlan-config").size(), life);
            QTRY_COMPARE(told->size(), 2 * (life - 1));
        }
        QCOMPARE(calls("torlan-server").size(), 1);
    }

    void server_that_somebody_else_asked_to_end_ends_it() {
        start();
        QTRY_VERIFY(supervisor->was_ready());
        ::kill(process("torlan-server"), SIGTERM);
        QTRY_COMPARE(ended->size(), 1);
        QCOMPARE(ended->first()[0].toInt(), 0);
    }

    // What a process says that is not the child, or was it before, does not count.
    void only_its_child_says_that_it_is_ready() {
        program("torlan-config", "eval 'echo 1 >&'$1; sleep 0.1; " + ready + lasting);
        start();
        QTRY_VERIFY(supervisor->was_ready());
        QCOMPARE(calls("torlan-config").size(), 1);
    }

 private:
    // Its number, on the descriptor that is its first argument; the options begin behind it.
    // Of bash: other shells know descriptors of one digit only.
    const QByteArray ready = "eval 'echo $$ >&'$1; ";
    const QByteArray lasting = "trap 'exit 0' TERM; while :; do sleep 0.05; done";

    void program(const char* _name, const QByteArray& _line) {
        // Exchanged as a whole: a shell reads its file while it runs.
        QFile file(folder->filePath("new"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/bash\nshift\necho $$ >" + path(_name, ".pid") +
                   "\n(number=$1; shift; echo \"$*\") >>" + path(_name, ".calls") + "\n" + _line +
                   "\n");
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QFile::remove(folder->filePath(_name));
        QVERIFY(file.rename(folder->filePath(_name)));
    }
    QByteArray path(const char* _name, const char* _ending) const {
        return '\'' + folder->filePath(QLatin1String(_name) + QLatin1String(_ending)).toUtf8() +
               '\'';
    }
    QByteArray content(const QString& _name) const {
        QFile file(folder->filePath(_name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList calls(const char* _name) const {
        return QString::fromUtf8(content(QLatin1String(_name) + ".calls"))
            .split('\n', Qt::SkipEmptyParts);
    }
    pid_t process(const char* _name) const {
        return pid_t(content(QLatin1String(_name) + ".pid").trimmed().toInt());
    }
    bool is_running(const char* _name) const {
        return QFile::exists(QStringLiteral("/proc/%1").arg(process(_name)));
    }
    void start() {
        supervisor = std::make_unique<supervisor_t>(options, web, folder->path(), "settings");
        ended = std::make_unique<QSignalSpy>(supervisor.get(), &supervisor_t::ended);
        told = std::make_unique<QSignalSpy>(supervisor.get(), &supervisor_t::told);
        supervisor->start();
    }

    std::unique_ptr<QTemporaryDir> folder;
    options_t options;
    std::optional<torlan::web_t> web;
    std::unique_ptr<supervisor_t> supervisor;
    std::unique_ptr<QSignalSpy> ended;
    std::unique_ptr<QSignalSpy> told;
};

QTEST_GUILESS_MAIN(tst_supervisor_t)
#include "tst_supervisor_t.moc"
