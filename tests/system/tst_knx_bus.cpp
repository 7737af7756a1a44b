#include <signal.h>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include "kit/real_knxd_t.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// API users and a real knxd, with the server between them.
class tst_knx_bus : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void write_goes_to_the_bus_and_its_status_comes_back_as_a_push();
    void torlanctl_shows_what_passes();
    void what_has_no_bus_data_is_simulated();
    void scene_on_the_bus_executes_the_scenario();
    void bus_data_changed_in_a_shell_counts_at_once();
    void broker_that_is_killed_leaves_the_bus_alone();
    void connection_message_tells_of_the_bus();
    void export_has_what_the_bus_needs();
    void knxd_that_stands_still_delays_neither_start_nor_end();

 private:
    static QJsonObject home();
    bool is_pushed(const QString& _element, const QString& _function, const QString& _value);
    /// A telegram is heard by the server, whatever came before it has been.
    bool lamp_follows(const QString& _address);

    real_knxd_t knxd{real_knxd_t::cache_t::with};
    host_process_t host;
    mqtt_client_t alice;
};

namespace {

const QString connection_topic = QStringLiteral("local/installation/0001/connection");

}  // namespace

QJsonObject tst_knx_bus::home() {
    const QJsonObject lamp =
        QJsonDocument::fromJson(R"({"dpt": "1.001", "write": "1/1/1", "status": ["1/1/2"]})")
            .object();
    QJsonObject home = with(small_home(), "items/i-lamp/knx", lamp);
    return with(home, "scenarios/s-night/knx", QJsonObject{{"write", "0/7/1"}, {"scene", 3}});
}

void tst_knx_bus::initTestCase() {
    QVERIFY(knxd.start());
    QVERIFY2(host.import(home()), qPrintable(host.error()));
    QVERIFY2(host.start({"--knx", knxd.url()}), qPrintable(host.error()));
    QVERIFY(join(alice, host, "alice"));
    QVERIFY(alice.subscribe(connection_topic));
    QVERIFY(alice.wait_for([](const auto& _message) {
        return _message.topic == connection_topic && _message.json()["bus"] == "online";
    }));
}

void tst_knx_bus::cleanupTestCase() {
    QCOMPARE(host.stop(), 0);
}

bool tst_knx_bus::is_pushed(const QString& _element, const QString& _function,
                            const QString& _value) {
    const QString topic = state_topic("alice", _element);
    return alice.wait_for([&](const auto& _message) {
        return _message.topic == topic && value_in(_message.json(), _function) == _value;
    }) != nullptr;
}

bool tst_knx_bus::lamp_follows(const QString& _address) {
    return knxd.tool("groupswrite", {_address, "1"}) && is_pushed("e-lamp", "execute", "1") &&
           knxd.tool("groupswrite", {_address, "0"}) && is_pushed("e-lamp", "execute", "0");
}

void tst_knx_bus::write_goes_to_the_bus_and_its_status_comes_back_as_a_push() {
    bus_listener_t listener(knxd);
    QVERIFY(QTest::qWaitFor(
        [&]() {
            return knxd.tool("groupswrite", {"7/7/7", "1"}) && listener.heard().contains("7/7/7");
        },
        20'000));
    const QJsonObject answer =
        alice.request(request_topic("alice", "set", "e-lamp"), write_payload("execute", "1"));
    QCOMPARE(answer["data"]["functions"]["execute"], QJsonValue("202"));
    QVERIFY(QTest::qWaitFor([&]() { return listener.heard().contains("to 1/1/1: 01"); }, 20'000));
    // The device has not answered yet.
    QCOMPARE(value_in(alice.request(request_topic("alice", "get", "e-lamp")), "execute"), "0");
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    QVERIFY(is_pushed("e-lamp", "execute", "1"));
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "0"}));
    QVERIFY(is_pushed("e-lamp", "execute", "0"));
}

void tst_knx_bus::what_has_no_bus_data_is_simulated() {
    alice.request(request_topic("alice", "set", "e-lamp"), write_payload("dim", "77"));
    QVERIFY(is_pushed("e-lamp", "dim", "77"));
}

void tst_knx_bus::scene_on_the_bus_executes_the_scenario() {
    const auto execution = [this]() {
        return QJsonDocument(alice.request(request_topic("alice", "get", "e-night"))).toJson();
    };
    const QByteArray before = execution();
    QVERIFY(knxd.tool("groupwrite", {"0/7/1", "02"}));
    QTRY_VERIFY_WITH_TIMEOUT(execution().contains("\"1\"") || execution().contains("true"), 20'000);
    QVERIFY(execution() != before);
}

void tst_knx_bus::bus_data_changed_in_a_shell_counts_at_once() {
    const auto run = [this](const QString& _sql) {
        bool is_done = false;
        {
            QSqlDatabase shell = QSqlDatabase::addDatabase("QSQLITE", "shell");
            shell.setDatabaseName(host.data() + "/installation.db");
            is_done = shell.open() && QSqlQuery(shell).exec(_sql);
        }
        QSqlDatabase::removeDatabase("shell");
        return is_done;
    };
    QVERIFY(
        run("UPDATE items SET knx = '{\"dpt\": \"1.001\", \"status\": [\"1/1/3\"]}' "
            "WHERE id = 'i-lamp'"));
    QVERIFY(QTest::qWaitFor(
        [this]() {
            return knxd.tool("groupswrite", {"1/1/3", "1"}) &&
                   value_in(alice.request(request_topic("alice", "get", "e-lamp")), "execute") ==
                       "1";
        },
        20'000));
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "0"}));
    QVERIFY(lamp_follows("1/1/3"));
    QVERIFY(
        run("UPDATE items SET knx = '{\"dpt\": \"1.001\", \"write\": \"1/1/1\", "
            "\"status\": [\"1/1/2\"]}' WHERE id = 'i-lamp'"));
    QVERIFY(QTest::qWaitFor(
        [this]() {
            return knxd.tool("groupswrite", {"1/1/2", "1"}) &&
                   value_in(alice.request(request_topic("alice", "get", "e-lamp")), "execute") ==
                       "1";
        },
        20'000));
}

void tst_knx_bus::broker_that_is_killed_leaves_the_bus_alone() {
    const qint64 former = host.broker_pid();
    QVERIFY(former > 0);
    ::kill(pid_t(former), SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(host.broker_pid() > 0 && host.broker_pid() != former, 20'000);
    QTRY_COMPARE_WITH_TIMEOUT(alice.sign_in(host.port(), "alice", password_of("alice")), 0, 20'000);
    QVERIFY(alice.subscribe("local/api/v1/alice/#"));
    QVERIFY(alice.subscribe(connection_topic));
    // Whom nothing of before is left of.
    mqtt_client_t fresh;
    QCOMPARE(fresh.sign_in(host.port(), "alice", password_of("alice")), 0);
    QVERIFY(fresh.subscribe(connection_topic));
    QCOMPARE(fresh.heard(connection_topic), QByteArray(R"({"state":"online","bus":"online"})"));
    QVERIFY(lamp_follows("1/1/2"));
}

void tst_knx_bus::connection_message_tells_of_the_bus() {
    knxd.end();
    const auto message = alice.wait_for([](const auto& _message) {
        return _message.topic == connection_topic && _message.json()["bus"] == "offline";
    });
    QVERIFY(message);
    QCOMPARE(message->payload, QByteArray(R"({"state":"online","bus":"offline"})"));
    const QJsonObject answer =
        alice.request(request_topic("alice", "set", "e-lamp"), write_payload("execute", "1"));
    QCOMPARE(answer["data"]["functions"]["execute"], QJsonValue("202"));
    QVERIFY(knxd.start());
    QVERIFY(alice.wait_for([](const auto& _message) {
        return _message.topic == connection_topic && _message.json()["bus"] == "online";
    }));
    QVERIFY(lamp_follows("1/1/2"));
}

void tst_knx_bus::torlanctl_shows_what_passes() {
    QProcess follower;
    follower.start(QStringLiteral(TORLANCTL), {"--data", host.data(), "bus", "--follow"});
    QByteArray shown;
    const auto has_shown = [&](const QByteArray& _text) {
        return QTest::qWaitFor(
            [&]() {
                shown += follower.readAllStandardOutput();
                return shown.contains(_text);
            },
            20'000);
    };
    QVERIFY2(has_shown("bus         local:"), shown.constData());
    QVERIFY(knxd.tool("groupswrite", {"7/7/6", "1"}));
    QVERIFY2(has_shown("-> 7/7/6 "), shown.constData());
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "1"}));
    QVERIFY2(has_shown("-> 1/1/2       write     1.001    1           i-lamp\n"),
             shown.constData());
    alice.request(request_topic("alice", "set", "e-lamp"), write_payload("execute", "0"));
    QVERIFY2(has_shown("we         -> 1/1/1       write     1.001    0           i-lamp\n"),
             shown.constData());
    follower.terminate();
    QVERIFY(follower.waitForFinished());

    QCOMPARE(host.control({"bus", "--json"}), 0);
    const QJsonObject told = QJsonDocument::fromJson(host.control_output()).object();
    QCOMPARE(told["link"].toString(), "online");
    QVERIFY(told["counters"]["received"].toInt() >= 2);
    QCOMPARE(told["telegrams"].toArray().last()["address"].toString(), "1/1/1");
    QCOMPARE(host.control({"status", "--json"}), 0);
    const QJsonObject status = QJsonDocument::fromJson(host.control_output()).object();
    QCOMPARE(status["bus"]["link"].toString(), "online");
    QVERIFY(knxd.tool("groupswrite", {"1/1/2", "0"}));
    QVERIFY(is_pushed("e-lamp", "execute", "0"));
}

void tst_knx_bus::export_has_what_the_bus_needs() {
    QCOMPARE(host.control({"export"}), 0);
    const QJsonObject exported = QJsonDocument::fromJson(host.control_output()).object();
    const QJsonObject given = home();
    QCOMPARE(exported["items"]["i-lamp"]["knx"], given["items"]["i-lamp"]["knx"]);
    QCOMPARE(exported["scenarios"]["s-night"]["knx"], given["scenarios"]["s-night"]["knx"]);
    QVERIFY(exported["items"]["i-dim"]["knx"].isUndefined());
}

void tst_knx_bus::knxd_that_stands_still_delays_neither_start_nor_end() {
    real_knxd_t still(real_knxd_t::cache_t::without);
    QVERIFY(still.start());
    still.hold(true);
    host_process_t other;
    QVERIFY2(other.import(home()), qPrintable(other.error()));
    QVERIFY2(other.start({"--knx", still.url()}), qPrintable(other.error()));
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(other.stop(), 0);
    QVERIFY2(clock.elapsed() < 10'000, qPrintable(QString::number(clock.elapsed())));
    still.hold(false);
}

QTEST_GUILESS_MAIN(tst_knx_bus)
#include "tst_knx_bus.moc"
