#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

/// The script that installs packages, with programs of the package system that are lines of shell
/// and do to a machine of the test's own what Debian's would.
class tst_install_packages : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        for (const char* name : {"run", "etc/systemd/system", "etc/rc3.d", "usr/sbin"}) {
            QVERIFY(QDir().mkpath(machine(name)));
        }
        script("dpkg", "exit 0");
        script("dpkg-query", "[ ! -e \"$TORLAN_SYSTEM_ROOT/installed\" ] || printf installed");
        // Debian enables units and the older script, and asks the policy before it starts anything.
        script(
            "apt-get",
            "case \"$*\" in *update*) exit 0 ;; esac\n"
            "cd \"$TORLAN_SYSTEM_ROOT\" && echo \"$*\" >calls\n"
            "etc=etc/systemd/system\n"
            "mkdir -p $etc/multi-user.target.wants $etc/sockets.target.wants\n"
            "touch $etc/multi-user.target.wants/knxd.service $etc/sockets.target.wants/knxd.socket "
            "etc/rc3.d/S01knxd\n"
            "for unit in knxd knxd.service knxd.socket other; do\n"
            "  \"$TORLAN_POLICY_FILE\" $unit start; echo \"$unit $?\" >>policy\n"
            "done");
        script("deb-systemd-helper",
               "shift; for unit; do rm -f "
               "\"$TORLAN_SYSTEM_ROOT\"/etc/systemd/system/*.wants/$unit; done");
        script("update-rc.d", "rm -f \"$TORLAN_SYSTEM_ROOT\"/etc/rc3.d/S01$1");
    }

    void new_daemon_neither_runs_nor_starts_at_the_next_boot() {
        QCOMPARE(install(), 0);
        QVERIFY(text("calls").endsWith("install knxd\n"));
        // 101: it may not be started.
        QCOMPARE(text("policy"), "knxd 101\nknxd.service 101\nknxd.socket 101\nother 101\n");
        QCOMPARE(enabled(), QStringList());
        QVERIFY(!QFile::exists(machine("usr/sbin/policy-rc.d")));
    }

    // An enabled socket alone would start it at the first connection.
    void daemon_that_was_there_is_left_alone_data() {
        QTest::addColumn<QString>("former");
        QTest::newRow("installed") << "installed";
        QTest::newRow("service") << "etc/systemd/system/multi-user.target.wants/knxd.service";
        QTest::newRow("socket") << "etc/systemd/system/sockets.target.wants/knxd.socket";
        QTest::newRow("script") << "etc/rc3.d/S02knxd";
    }

    void daemon_that_was_there_is_left_alone() {
        QFETCH(QString, former);
        QVERIFY(QDir().mkpath(QFileInfo(machine(former)).path()));
        QFile file(machine(former));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(install(), 0);
        QVERIFY2(enabled().size() >= 3, qPrintable(enabled().join(' ')));
    }

    void failed_installation_leaves_nothing_enabled_either() {
        const QString path = folder->filePath("tools/apt-get");
        QFile file(path);
        QVERIFY(file.open(QIODevice::Append));
        file.write("exit 100\n");
        file.close();
        QCOMPARE(install(), 1);
        QCOMPARE(enabled(), QStringList());
    }

    void who_does_not_want_a_demonstration_gets_no_daemon_data() {
        QTest::addColumn<QString>("list");
        QTest::addColumn<bool>("has_daemon");
        QTest::newRow("run") << "run" << false;
        QTest::newRow("demo") << "demo" << true;
        QTest::newRow("test") << "test" << true;
    }

    void who_does_not_want_a_demonstration_gets_no_daemon() {
        QFETCH(QString, list);
        script("id", "echo 1000");
        script("sudo", "shift; printf '%s\\n' \"$@\" >\"$TORLAN_SYSTEM_ROOT/wanted\"");
        QCOMPARE(call({list}), 0);
        const QStringList wanted = text("wanted").split('\n');
        QVERIFY(wanted.contains("g++") && wanted.contains("knxd-dev"));
        QTEST(wanted.contains("knxd"), "has_daemon");
    }

 private:
    QString machine(const QString& _name) const { return folder->filePath("machine/" + _name); }
    void script(const QString& _name, const QByteArray& _lines) {
        QVERIFY(QDir().mkpath(folder->filePath("tools")));
        QFile file(folder->filePath("tools/" + _name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + _lines + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    int install() { return call({"--as-root", "knxd"}); }
    int call(const QStringList& _arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("PATH", folder->filePath("tools") + ":" + environment.value("PATH"));
        environment.insert("TORLAN_SYSTEM_ROOT", machine({}));
        environment.insert("TORLAN_POLICY_FILE", machine("usr/sbin/policy-rc.d"));
        environment.insert("TORLAN_OS_RELEASE", folder->filePath("os-release"));
        QFile release(folder->filePath("os-release"));
        if (release.open(QIODevice::WriteOnly)) {
            release.write("ID=debian\nVERSION_ID=12\n");
            release.close();
        }
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(INSTALL_PACKAGES, _arguments);
        return process.waitForFinished() ? process.exitCode() : -1;
    }
    /// What starts at the next boot.
    QStringList enabled() const {
        QStringList found;
        for (const char* place : {"etc/systemd/system/multi-user.target.wants",
                                  "etc/systemd/system/sockets.target.wants", "etc/rc3.d"}) {
            found += QDir(machine(place)).entryList(QDir::Files);
        }
        return found;
    }
    QString text(const QString& _name) const {
        QFile file(machine(_name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_install_packages)
#include "tst_install_packages.moc"
