#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QTcpServer>
#include <QtTest>
#include <thread>

#include "kit/former_layout.h"
#include "kit/free_port.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// What keeps the server from starting is told in one sentence, with a non-zero status and nothing
/// half-made.
class tst_startup : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_port_in_use_is_named();
    void a_second_host_on_the_same_folder_is_refused();
    void a_damaged_database_is_refused_and_left_as_it_is();
    void a_home_of_the_former_layout_is_served_and_told();
    void a_database_that_was_only_begun_gets_the_sample();
    void a_folder_without_drivers_is_told();
    void a_missing_broker_program_is_told();
    void stops_within_seconds_with_status_zero();
    void a_missing_folder_is_told_by_the_tool();
    void listens_on_loopback_only();
    void secrets_are_not_readable_by_others();
    void an_installation_comes_through_a_pipe_once();
    void a_stop_while_a_pipe_is_waited_for_ends_it_with_status_zero_data();
    void a_stop_while_a_pipe_is_waited_for_ends_it_with_status_zero();
};

namespace {

/// One line that holds _needle.
bool is_one_sentence(const QString& _error, const QString& _needle) {
    return _error.trimmed().count('\n') == 0 && _error.contains(_needle);
}

}  // namespace

void tst_startup::a_port_in_use_is_named() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost, host.port()));
    QVERIFY(!host.start());
    QVERIFY(host.process().exitCode() != 0);
    QVERIFY2(is_one_sentence(host.error(), QString::number(host.port())), qPrintable(host.error()));
}

void tst_startup::a_second_host_on_the_same_folder_is_refused() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QProcess second;
    second.start(TORLAN_SERVER, {"--data", host.data(), "--port", QString::number(free_port())});
    QVERIFY(second.waitForFinished());
    QVERIFY(second.exitCode() != 0);
    const QString error = QString::fromUtf8(second.readAllStandardError());
    QVERIFY2(is_one_sentence(error, host.data()), qPrintable(error));
    QVERIFY(host.is_running());
}

void tst_startup::a_damaged_database_is_refused_and_left_as_it_is() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    QFile file(host.data() + "/installation.db");
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.seek(4096);
    file.write(QByteArray(8192, 'x'));
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray damaged = file.readAll();
    file.close();
    QVERIFY(!host.start());
    QVERIFY(host.process().exitCode() != 0);
    QVERIFY2(is_one_sentence(host.error(), "installation.db"), qPrintable(host.error()));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), damaged);
}

void tst_startup::a_home_of_the_former_layout_is_served_and_told() {
    host_process_t host;
    const QString path = host.data() + "/installation.db";
    QCOMPARE(sample::former_layout_t(path, {"INSERT INTO items VALUES ('my-request', '')"}).error,
             QString());
    // It is an installation, so that no sample is looked for.
    QVERIFY2(host.start({"--sample", "/nonexistent/sample.json"}), qPrintable(host.error()));
    QFile log(host.data() + "/logs/server-torlan.log");
    QVERIFY(log.open(QIODevice::ReadOnly));
    QString told;
    QTRY_VERIFY(
        (told += QString::fromUtf8(log.readAll())).contains("items/my-request is set aside: "));
    QVERIFY2(told.contains(path + " had layout 1 and has layout 4 now; what it was is kept in " +
                           host.data() + "/installation.layout-1.db."),
             qPrintable(told));
    mqtt_client_t alice;
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(alice.wait_for(state_topic("alice", "e-lamp")));
}

void tst_startup::a_database_that_was_only_begun_gets_the_sample() {
    host_process_t host;
    QFile begun(host.data() + "/installation.db");
    QVERIFY(begun.open(QIODevice::WriteOnly));
    QFile sample(host.data() + "/sample.json");
    QVERIFY(sample.open(QIODevice::WriteOnly) && sample.write(small_home_text()) > 0);
    sample.close();
    QVERIFY2(host.start({"--sample", sample.fileName()}), qPrintable(host.error()));
    mqtt_client_t alice;
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(alice.wait_for(state_topic("alice", "e-lamp")));
}

void tst_startup::a_folder_without_drivers_is_told() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    const QTemporaryDir empty;
    QVERIFY(!host.start({"--plugins", empty.path()}));
    QVERIFY(host.process().exitCode() != 0);
    QVERIFY2(is_one_sentence(host.error(), empty.path()), qPrintable(host.error()));
}

void tst_startup::a_missing_broker_program_is_told() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    QVERIFY(!host.start({"--broker-program", "/nonexistent/mosquitto"}));
    QVERIFY(host.process().exitCode() != 0);
    QVERIFY2(is_one_sentence(host.error(), "/nonexistent/mosquitto"), qPrintable(host.error()));
}

void tst_startup::stops_within_seconds_with_status_zero() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    const qint64 broker = host.broker_pid();
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(host.stop(), 0);
    QVERIFY2(clock.elapsed() < 5000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(!QFile::exists(QStringLiteral("/proc/%1").arg(broker)));
}

void tst_startup::a_missing_folder_is_told_by_the_tool() {
    QProcess torlanctl;
    torlanctl.start(TORLANCTL, {"--data", "/nonexistent/folder", "export"});
    QVERIFY(torlanctl.waitForFinished());
    QCOMPARE(torlanctl.exitCode(), 1);
    const QString error = QString::fromUtf8(torlanctl.readAllStandardError());
    QVERIFY2(is_one_sentence(error, "/nonexistent/folder"), qPrintable(error));
}

void tst_startup::listens_on_loopback_only() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    const quint16 ws_port = free_port();
    QVERIFY2(host.start({"--ws-port", QString::number(ws_port)}), qPrintable(host.error()));
    QFile table("/proc/net/tcp");
    QVERIFY(table.open(QIODevice::ReadOnly));
    const QString text = QString::fromLatin1(table.readAll());
    for (const quint16 port : {host.port(), ws_port}) {
        const QString suffix = QStringLiteral(":%1 ").arg(port, 4, 16, QLatin1Char('0')).toUpper();
        QVERIFY2(text.contains("0100007F" + suffix), qPrintable(suffix));
        QVERIFY2(!text.contains("00000000" + suffix), qPrintable(suffix));
    }
}

void tst_startup::secrets_are_not_readable_by_others() {
    host_process_t host;
    QVERIFY(host.import(small_home()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    const auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ReadOther |
                        QFileDevice::WriteOther;
    QVERIFY(!(QFile::permissions(host.data() + "/installation.db") & others));
    for (const qint64 pid : {host.pid(), host.broker_pid()}) {
        QFile line(QStringLiteral("/proc/%1/cmdline").arg(pid));
        QVERIFY(line.open(QIODevice::ReadOnly));
        QVERIFY(!line.readAll().contains("password"));
    }
}

// A second reading would wait for ever, and the hint on the first screen needs the file's own text.
void tst_startup::an_installation_comes_through_a_pipe_once() {
    host_process_t host;
    const QString pipe = host.data() + "/pipe";
    QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
    QJsonObject document = small_home();
    QJsonObject users = document.value("users").toObject();
    users.insert("u-alice", QJsonObject{{"username", "alice"}, {"password", "alice-password"}});
    document.insert("users", users);
    const QByteArray home = QJsonDocument(document).toJson();
    std::thread writer([&]() {
        QFile file(pipe);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(home);
        }
    });
    const bool started = host.start({"--import", pipe});
    // Lets a writer go that nobody reads.
    const int reader = ::open(qPrintable(pipe), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    writer.join();
    ::close(reader);
    QVERIFY2(started, qPrintable(host.error()));
    QCOMPARE(host.control({"export"}), 0);
    QVERIFY(host.control_output().contains("\"alice\""));
    QByteArray shown = host.start_output();
    QTRY_VERIFY(
        (shown += host.process().readAll()).contains("the password of alice is alice-password:"));
    QTRY_VERIFY((shown += host.process().readAll()).contains(" --confirm --user alice\n"));
    // As it is pasted.
    const QByteArrayList lines = shown.split('\n');
    const auto put = std::find_if(lines.cbegin(), lines.cend(), [](const QByteArray& _line) {
        return _line.contains("torlanctl") && _line.contains(" put ");
    });
    QProcess shell;
    shell.start("/bin/sh", {"-c", QString::fromUtf8(*put)});
    shell.write("alice-password\n");
    shell.closeWriteChannel();
    QVERIFY(shell.waitForFinished());
    QVERIFY2(shell.exitCode() == 0, shell.readAllStandardError().constData());
}

void tst_startup::a_stop_while_a_pipe_is_waited_for_ends_it_with_status_zero_data() {
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("has_writer");
    QTest::newRow("SIGTERM, nobody writes") << SIGTERM << false;
    QTest::newRow("SIGTERM, the writer is silent") << SIGTERM << true;
    QTest::newRow("Ctrl-C, nobody writes") << SIGINT << false;
}

void tst_startup::a_stop_while_a_pipe_is_waited_for_ends_it_with_status_zero() {
    QFETCH(int, number);
    QFETCH(bool, has_writer);
    const QTemporaryDir folder;
    const QString pipe = folder.filePath("pipe");
    QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
    QProcess server;
    server.start(TORLAN_SERVER, {"--data", folder.filePath("data"), "--import", pipe});
    QVERIFY(server.waitForStarted());
    const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(server.processId()));
    const auto is_open = [&]() {
        const QFileInfoList all = descriptors.entryInfoList(QDir::System | QDir::Files);
        return std::any_of(all.begin(), all.end(), [&](const QFileInfo& _descriptor) {
            return _descriptor.symLinkTarget() == pipe;
        });
    };
    QTRY_VERIFY_WITH_TIMEOUT(is_open(), process_timeout_ms);
    const int writer =
        has_writer ? ::open(qPrintable(pipe), O_WRONLY | O_NONBLOCK | O_CLOEXEC) : -1;
    QCOMPARE(writer >= 0, has_writer);
    ::kill(pid_t(server.processId()), number);
    const bool ended = server.waitForFinished(5000);
    ::close(writer);
    QVERIFY(ended);
    QCOMPARE(server.exitStatus(), QProcess::NormalExit);
    QCOMPARE(server.exitCode(), 0);
    QCOMPARE(server.readAllStandardError(), QByteArray());
    QVERIFY(!QFile::exists(folder.filePath("data")));
}

QTEST_GUILESS_MAIN(tst_startup)
#include "tst_startup.moc"
