#include <QTcpServer>
#include <QtTest>

#include "system/support/small_home.h"

using namespace support;

/// What keeps the server from starting is told in one sentence, with a non-zero status and nothing
/// half-made.
class tst_startup : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_port_in_use_is_named();
    void a_second_host_on_the_same_folder_is_refused();
    void a_damaged_database_is_refused_and_left_as_it_is();
    void a_folder_without_drivers_is_told();
    void a_missing_broker_program_is_told();
    void stops_within_seconds_with_status_zero();
    void a_missing_folder_is_told_by_the_tool();
    void listens_on_loopback_only();
    void secrets_are_not_readable_by_others();
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
    second.start(TORLAN_SERVER,
                 {"--data", host.data(), "--port", QString::number(host_process_t::free_port())});
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
    const quint16 ws_port = host_process_t::free_port();
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

QTEST_GUILESS_MAIN(tst_startup)
#include "tst_startup.moc"
