#include <signal.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>

#include "broker/port_check.h"
#include "kit/has_ended.h"
#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"

using broker::broker_process_t;
using namespace kit;

namespace {

QByteArray read_file(const QString& _path) {
    QFile file(_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString configuration_of(qint64 _process) {
    const auto arguments = read_file(QStringLiteral("/proc/%1/cmdline").arg(_process)).split('\0');
    return QString::fromLocal8Bit(arguments.value(2));
}

/// Local addresses (hexadecimal) on which a port is listened on, of both IP versions.
QStringList listening_addresses(quint16 _port) {
    QStringList found;
    for (const char* const table : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        for (const QByteArray& line : read_file(table).split('\n')) {
            const QList<QByteArray> words = line.simplified().split(' ');
            const QList<QByteArray> local = words.value(1).split(':');
            if (words.value(3) == "0A" && local.value(1).toUShort(nullptr, 16) == _port) {
                found.append(QString::fromLatin1(local[0]));
            }
        }
    }
    return found;
}

}  // namespace

class tst_broker_process_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void port_in_use_is_told_before_the_start();
    void websocket_port_in_use_is_told();
    void missing_executable_is_told();
    void executable_that_ends_is_told();
    void bad_connection_topic_is_told();
    void executable_that_does_not_listen_is_ended();
    void plugin_that_others_can_change_is_not_loaded();
    void plugin_in_a_folder_that_the_broker_cannot_enter_is_loaded();
    void it_listens_on_loopback_only();
    void its_files_are_private_and_gone_at_the_end();
    void it_does_not_run_as_root();
    void killed_broker_is_started_again();
    void hung_broker_is_replaced();
    void stop_ends_it_at_once();
    void it_may_be_started_again();
    void it_ends_when_its_host_is_killed();
};

void tst_broker_process_t::port_in_use_is_told_before_the_start() {
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost));
    auto settings = real_broker_t::make_settings();
    settings.port = other.serverPort();
    broker_process_t process(settings);
    QCOMPARE(process.start({}).error,
             QString("Port %1 of 127.0.0.1 is already in use.").arg(settings.port));
    QCOMPARE(process.process_id(), qint64(0));
}

void tst_broker_process_t::websocket_port_in_use_is_told() {
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::Any));
    auto settings = real_broker_t::make_settings();
    settings.websocket_port = other.serverPort();
    broker_process_t process(settings);
    QVERIFY(process.start({}).error.contains(QString::number(settings.websocket_port)));
}

void tst_broker_process_t::missing_executable_is_told() {
    auto settings = real_broker_t::make_settings();
    settings.executable = "no-such-broker";
    broker_process_t process(settings);
    QCOMPARE(process.start({}).error,
             QString("The MQTT broker \"no-such-broker\" is not installed."));
    QCOMPARE(process.wait_until_listening().error, QString("The MQTT broker was not started."));
}

void tst_broker_process_t::executable_that_ends_is_told() {
    auto settings = real_broker_t::make_settings();
    settings.executable = "false";
    broker_process_t process(settings);
    QVERIFY(process.start({}).is_ok());
    QCOMPARE(process.wait_until_listening().error,
             QString("The MQTT broker could not be started: it gave no reason."));
}

void tst_broker_process_t::bad_connection_topic_is_told() {
    auto settings = real_broker_t::make_settings();
    settings.connection_topic = "#";
    broker_process_t process(settings);
    QVERIFY(process.start({}).error.contains("\"#\""));
    QCOMPARE(process.process_id(), qint64(0));
}

void tst_broker_process_t::executable_that_does_not_listen_is_ended() {
    QTemporaryDir folder;
    const QString path = folder.filePath("silent");
    QFile script(path);
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nexec sleep 60\n");
    script.close();
    script.setPermissions(QFile::Permissions(0x5555) | QFile::WriteOwner);
    QVERIFY(QFile::setPermissions(folder.path(), QFile::Permissions(0x7755)));
    auto settings = real_broker_t::make_settings();
    settings.executable = path;
    settings.start_timeout = std::chrono::milliseconds(100);
    broker_process_t process(settings);
    QVERIFY(process.start({}).is_ok());
    QVERIFY(process.wait_until_listening().error.contains("does not listen"));
    QCOMPARE(process.process_id(), qint64(0));
}

void tst_broker_process_t::plugin_that_others_can_change_is_not_loaded() {
    const QTemporaryDir folder;
    auto settings = real_broker_t::make_settings();
    settings.plugin = folder.filePath("plugin.so");
    QVERIFY(QFile::copy(broker::plugin_file_t::usual_path(), settings.plugin));
    QVERIFY(QFile::setPermissions(settings.plugin, QFile::Permissions(0x6666)));
    broker_process_t process(settings);
    QVERIFY(process.start({}).error.contains("can be changed by other users"));
    QCOMPARE(process.process_id(), qint64(0));
}

void tst_broker_process_t::plugin_in_a_folder_that_the_broker_cannot_enter_is_loaded() {
    const QTemporaryDir folder;  // 0700, and root's broker is another account
    auto settings = real_broker_t::make_settings();
    settings.plugin = folder.filePath("plugin.so");
    QVERIFY(QFile::copy(broker::plugin_file_t::usual_path(), settings.plugin));
    real_broker_t broker(settings);
    QCOMPARE(broker.start(), QString());
}

void tst_broker_process_t::it_listens_on_loopback_only() {
    auto settings = real_broker_t::make_settings();
    settings.websocket_port = free_port();
    real_broker_t broker(settings);
    QCOMPARE(broker.start(), QString());
    QCOMPARE(listening_addresses(settings.port), QStringList{"0100007F"});
    QCOMPARE(listening_addresses(settings.websocket_port), QStringList{"0100007F"});
}

void tst_broker_process_t::its_files_are_private_and_gone_at_the_end() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    QString folder;
    {
        const QFileInfo file(configuration_of(broker.process.process_id()));
        folder = file.path();
        QCOMPARE(QDir(folder).entryList(QDir::Files), QStringList{"mosquitto.conf"});
        QCOMPARE(QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList{"own"});
        QCOMPARE(int(QFileInfo(folder + "/own").permissions() & 0x0077), 0);
        // Of another account its group may read it, and nothing in the folder can be exchanged.
        const bool is_root = ::geteuid() == 0;
        QCOMPARE(file.ownerId(), ::geteuid());
        QCOMPARE(QFileInfo(folder).ownerId(), ::geteuid());
        QCOMPARE(int(file.permissions() & 0x0077), is_root ? 0x0040 : 0);
        QCOMPARE(int(QFileInfo(folder).permissions() & 0x0077), is_root ? 0x0010 : 0);
        QVERIFY(!read_file(file.filePath()).contains(broker.process.host_password().toUtf8()));
    }
    {
        broker_process_t gone(real_broker_t::make_settings());
        QVERIFY(gone.start({}).is_ok() && gone.wait_until_listening().is_ok());
        folder = QFileInfo(configuration_of(gone.process_id())).path();
        QVERIFY(QFileInfo::exists(folder));
    }
    QVERIFY(!QFileInfo::exists(folder));
}

void tst_broker_process_t::it_does_not_run_as_root() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    const QFileInfo process(QStringLiteral("/proc/%1").arg(broker.process.process_id()));
    QVERIFY(process.ownerId() != 0);
}

void tst_broker_process_t::killed_broker_is_started_again() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    QSignalSpy died(&broker.process, &broker_process_t::died);
    QSignalSpy listening(&broker.process, &broker_process_t::listening);
    for (int i = 1; i <= 3; ++i) {
        const qint64 former = broker.process.process_id();
        ::kill(pid_t(former), SIGKILL);
        QTRY_COMPARE(listening.size(), i);
        QCOMPARE(died.size(), i);
        QVERIFY(broker.process.process_id() != former);
    }
    mqtt_client_t alice;
    QCOMPARE(alice.sign_in(broker.settings.port, "alice", "alice-password"), 0);
}

void tst_broker_process_t::hung_broker_is_replaced() {
    auto settings = real_broker_t::make_settings();
    settings.answer_timeout = std::chrono::milliseconds(100);
    real_broker_t broker(settings);
    QCOMPARE(broker.start(), QString());
    QSignalSpy listening(&broker.process, &broker_process_t::listening);
    const qint64 former = broker.process.process_id();
    ::kill(pid_t(former), SIGSTOP);
    QVERIFY(listening.wait(20'000));
    QVERIFY(has_ended(former));
    mqtt_client_t alice;
    QCOMPARE(alice.sign_in(broker.settings.port, "alice", "alice-password"), 0);
}

void tst_broker_process_t::stop_ends_it_at_once() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    QSignalSpy died(&broker.process, &broker_process_t::died);
    mqtt_client_t alice;
    QCOMPARE(alice.sign_in(broker.settings.port, "alice", "alice-password"), 0);
    const qint64 process = broker.process.process_id();
    QElapsedTimer clock;
    clock.start();
    broker.process.stop();
    QVERIFY(clock.elapsed() < 2'000);
    QVERIFY(has_ended(process));
    QVERIFY(died.isEmpty());
    QVERIFY(!broker.process.is_listening());
    QVERIFY(broker::is_port_free(broker.settings.port));
}

void tst_broker_process_t::it_may_be_started_again() {
    real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    broker.process.stop();
    QCOMPARE(broker.start(), QString());
    QVERIFY(broker.process.is_listening());
}

void tst_broker_process_t::it_ends_when_its_host_is_killed() {
    QProcess holder;
    holder.start(qEnvironmentVariable("TORLAN_BROKER_HOLDER"), {QString::number(free_port())});
    QTRY_VERIFY_WITH_TIMEOUT(holder.canReadLine(), 10'000);
    const qint64 process = holder.readLine().trimmed().toLongLong();
    QVERIFY(process > 0 && !has_ended(process));
    const QString folder = QFileInfo(configuration_of(process)).path();
    holder.kill();
    QVERIFY(holder.waitForFinished());
    QTRY_VERIFY(has_ended(process));
    QDir(folder).removeRecursively();
}

QTEST_GUILESS_MAIN(tst_broker_process_t)
#include "tst_broker_process_t.moc"
