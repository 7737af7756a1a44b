#include <signal.h>

#include <QFile>
#include <QJsonDocument>
#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// What a server tells its owner.
class tst_status : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void running_server_is_described();
    void people_read_lines();
    void errors_are_shown();
    void bus_that_is_not_there_is_refused();
    void without_a_server_it_is_refused();

 private:
    const QJsonObject status() {
        return host.control({"status", "--json"}) == 0
                   ? QJsonDocument::fromJson(host.control_output()).object()
                   : QJsonObject();
    }

    host_process_t host;
};

void tst_status::initTestCase() {
    QVERIFY2(host.import(small_home()), qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
}

void tst_status::cleanupTestCase() {
    QCOMPARE(host.stop(), 0);
}

void tst_status::running_server_is_described() {
    const QJsonObject told = status();
    QCOMPARE(told["server"]["process"].toInteger(), host.pid());
    QCOMPARE(told["server"]["ready"], QJsonValue(true));
    QVERIFY(!told["server"]["version"].toString().isEmpty());
    const auto since = QDateTime::fromString(told["server"]["since"].toString(), Qt::ISODate);
    QVERIFY(since.secsTo(QDateTime::currentDateTimeUtc()) < 120);
    QCOMPARE(told["broker"].toObject(),
             (QJsonObject{
                 {"process", host.broker_pid()}, {"running", true}, {"users_confirmed", true}}));
    QCOMPARE(told["mqtt"].toObject(),
             (QJsonObject{{"address", "127.0.0.1"}, {"port", int(host.port())}}));
    QCOMPARE(told["configuration_port"].toInt(), int(host.config_port()));
    QCOMPARE(
        told["counts"].toObject(),
        (QJsonObject{
            {"elements", 3}, {"items", 5}, {"scenarios", 1}, {"thermostats", 1}, {"users", 2}}));
    QVERIFY(told["messages"]["published"].toInt() > 0);
    QVERIFY(!told.contains("bus"));
    for (const char* const file : {"log", "audit"}) {
        const QString path = told["paths"][QLatin1String(file)].toString();
        QVERIFY2(QFile::exists(path), qPrintable(path));
    }
    QVERIFY(!told.contains("version"));
}

void tst_status::people_read_lines() {
    QCOMPARE(host.control({"status"}), 0);
    const QByteArray text = host.control_output();
    QVERIFY2(text.startsWith("server      ready, version "), text.constData());
    QVERIFY2(text.contains("\nbroker      running, process "), text.constData());
    QVERIFY2(text.contains("\nbus         none\n"), text.constData());
    QVERIFY2(text.contains("\nholds       3 elements, 5 items, 1 scenarios"), text.constData());
}

void tst_status::errors_are_shown() {
    const qint64 broker = host.broker_pid();
    ::kill(pid_t(broker), SIGKILL);
    QTRY_VERIFY(QJsonDocument(status()).toJson().contains("The MQTT broker has ended"));
    QTRY_VERIFY(status()["broker"]["running"].toBool() &&
                status()["broker"]["process"].toInteger() != broker);
}

void tst_status::bus_that_is_not_there_is_refused() {
    QCOMPARE(host.control({"bus"}), 1);
    QCOMPARE(host.error(), "torlanctl: The server has no bus: it was started without --knx.\n");
}

void tst_status::without_a_server_it_is_refused() {
    QTemporaryDir empty;
    QProcess torlanctl;
    torlanctl.start(QStringLiteral(TORLANCTL), {"--data", empty.path(), "status"});
    QVERIFY(torlanctl.waitForFinished());
    QCOMPARE(torlanctl.exitCode(), 1);
    QCOMPARE(torlanctl.readAllStandardError(),
             QString("torlanctl: No server runs on %1.\n").arg(empty.path()).toUtf8());
}

QTEST_GUILESS_MAIN(tst_status)
#include "tst_status.moc"
