#include <signal.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// The script ./run around a build and a program that are lines of shell.
class tst_run : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QFile::copy(RUN, folder->filePath("run")));
        script("packaging/install-packages", "exit 0");
        script("packaging/unpack-packages", "exit 0");
        script("tools/cmake",
               "mkdir -p build/release && echo \"CMAKE_HOME_DIRECTORY:INTERNAL=$PWD\" "
               ">build/release/CMakeCache.txt && touch build/release/build.ninja");
        script("tools/ninja", "exit 0");
        script("build/release/bin/torlan-run", "printf '%s\\n' \"$@\"");
    }
    void cleanup() {
        process.kill();
        process.waitForFinished();
    }

    void it_becomes_the_supervisor_with_its_options() {
        start({"--data", "/a b", "--port=5", "--simulate", "--user", "u", "--config-port", "7",
               "--web-port", "8", "--no-web"});
        QVERIFY(process.waitForFinished());
        const QByteArray given = process.readAllStandardOutput();
        QVERIFY2(given.startsWith("--data\n/a b\n--config-port\n7\n--sample\n"), given);
        QVERIFY2(given.endsWith("--port=5\n--simulate\n--user\nu\n--web-port\n8\n--no-web\n"),
                 given);
        QCOMPARE(process.exitCode(), 0);
    }

    void what_a_bus_needs_is_fetched_for_a_demonstration_only_data() {
        QTest::addColumn<QStringList>("given");
        QTest::addColumn<QByteArray>("packages");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QByteArray>("sample");
        QTest::newRow("none") << QStringList() << QByteArray("run") << QByteArray("/var")
                              << QByteArray("/home.json");
        QTest::newRow("local") << QStringList{"--knx", "local:/run/knx"} << QByteArray("run")
                               << QByteArray("/var") << QByteArray("/home.json");
        QTest::newRow("host") << QStringList{"--knx=ip:host"} << QByteArray("run")
                              << QByteArray("/var") << QByteArray("/home.json");
        QTest::newRow("demo") << QStringList{"--knx", "demo"} << QByteArray("demo")
                              << QByteArray("/var-knx") << QByteArray("/knx-home.json");
        QTest::newRow("demo, other spelling")
            << QStringList{"--knx=demo"} << QByteArray("demo") << QByteArray("/var-knx")
            << QByteArray("/knx-home.json");
        QTest::newRow("demo in a folder")
            << QStringList{"--knx", "demo", "--data", "/a/b"} << QByteArray("demo")
            << QByteArray("/a/b") << QByteArray("/knx-home.json");
    }

    void what_a_bus_needs_is_fetched_for_a_demonstration_only() {
        QFETCH(QStringList, given);
        QFETCH(QByteArray, packages);
        QFETCH(QByteArray, data);
        QFETCH(QByteArray, sample);
        script("packaging/install-packages", "echo \"$*\"");
        start(given);
        QVERIFY(process.waitForFinished());
        const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
        QCOMPARE(lines.value(0), packages);
        QCOMPARE(lines.value(1), QByteArray("--data"));
        QVERIFY2(lines.value(2).endsWith(data), lines.value(2));
        QVERIFY2(lines.value(6).endsWith("/examples" + sample), lines.value(6));
        QCOMPARE(lines.contains("--knx"), !given.isEmpty());
    }

    // A package manager that is cut off leaves a machine that has to be mended by hand.
    void signal_while_packages_are_installed_waits_for_them_data() {
        QTest::addColumn<int>("signal");
        QTest::addColumn<int>("status");
        QTest::newRow("Ctrl-C") << SIGINT << 130;
        QTest::newRow("SIGTERM") << SIGTERM << 143;
        QTest::newRow("closed terminal") << SIGHUP << 129;
        QTest::newRow("Ctrl-backslash") << SIGQUIT << 131;
    }

    void signal_while_packages_are_installed_waits_for_them() {
        QFETCH(int, signal);
        QFETCH(int, status);
        // Ends when the test lets it: the file must be there after the script, so it was waited
        // for.
        script(
            "packaging/install-packages",
            "echo begun; while [ ! -e go ] && [ -d packaging ]; do sleep 0.02; done; touch done");
        start({});
        QVERIFY(process.waitForReadyRead());
        QCOMPARE(::kill(pid_t(process.processId()), signal), 0);
        process.setReadChannel(QProcess::StandardError);
        QVERIFY(process.waitForReadyRead());
        QVERIFY(process.readAll().contains("installation of packages is being finished"));
        QCOMPARE(process.state(), QProcess::Running);
        touch("go");
        QVERIFY(process.waitForFinished());
        QVERIFY(QFile::exists(folder->filePath("done")));
        QCOMPARE(process.exitCode(), status);
    }

    void signal_ends_a_build_at_once() {
        script("tools/ninja", "echo begun; exec sleep 60");
        start({});
        QVERIFY(process.waitForReadyRead());
        QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
        QVERIFY(process.waitForFinished(10'000));
        QCOMPARE(process.exitCode(), 130);
    }

    void folder_that_was_moved_is_built_anew() {
        start({});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
        touch("build/release/left");
        start({});
        QVERIFY(process.waitForFinished());
        QVERIFY(QFile::exists(folder->filePath("build/release/left")));

        const QString former = folder->path();
        const QString moved = folder->path() + "-moved";
        QVERIFY(QDir().rename(former, moved));
        process.setWorkingDirectory(moved);
        process.start(moved + "/run", QStringList());
        QVERIFY(process.waitForFinished());
        QVERIFY(!QFile::exists(moved + "/build/release/left"));
        QVERIFY(process.readAllStandardError().contains("has moved"));
        QVERIFY(QDir().rename(moved, former));
    }

    void library_that_cannot_be_fetched_ends_nothing() {
        script("packaging/unpack-packages", "exit 1");
        start({});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 0);
    }

    void failed_step_ends_it_data() {
        QTest::addColumn<QString>("step");
        QTest::addColumn<int>("status");
        QTest::newRow("packages") << "packaging/install-packages" << 1;
        QTest::newRow("build") << "tools/ninja" << 2;
    }

    void failed_step_ends_it() {
        QFETCH(QString, step);
        QFETCH(int, status);
        script(step, "exit 3");
        start({});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), status);
        QVERIFY(process.readAllStandardOutput().isEmpty());
    }

    void wrong_call_is_told() {
        start({"--no-such"});
        QVERIFY(process.waitForFinished());
        QCOMPARE(process.exitCode(), 2);
        QVERIFY(process.readAllStandardError().contains("--no-such"));
    }

 private:
    void script(const QString& _name, const QByteArray& _line) {
        const QString path = folder->filePath(_name);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile::remove(path);
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + _line + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    void touch(const QString& _name) {
        QFile file(folder->filePath(_name));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    void start(const QStringList& _arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PATH", folder->filePath("tools") + ":" + environment.value("PATH"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(folder->path());
        process.setReadChannel(QProcess::StandardOutput);
        process.start(folder->filePath("run"), _arguments);
    }

    std::unique_ptr<QTemporaryDir> folder;
    QProcess process;
};

QTEST_GUILESS_MAIN(tst_run)
#include "tst_run.moc"
