#include <signal.h>

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {

QJsonObject lamp(const QString& _item) {
    return {{"name", "New lamp"},
            {"type", 1},
            {"flags", 0},
            {"functions", QJsonObject{{"execute", _item}}}};
}

}  // namespace

/// The host follows its database, whoever writes it, and keeps what the bus said.
class tst_live_changes : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void a_value_from_the_bus_side_is_pushed();
    void an_element_renamed_in_an_sql_shell_is_pushed();
    void an_import_replaces_everything();
    void an_import_is_heard_as_what_it_changes_data();
    void an_import_is_heard_as_what_it_changes();
    void topic_that_changes_takes_the_connection_state_along();
    void a_broken_import_changes_nothing();
    void values_are_back_after_a_restart();
    void simulated_temperatures_drift();
    void the_export_of_a_running_host_imports_again();

 private:
    /// The state of the connection on a topic, as alice sees it who comes now; empty: none.
    QString connection_on(const QString& _topic) const;

    std::unique_ptr<host_process_t> host;
    std::unique_ptr<mqtt_client_t> alice;
};

void tst_live_changes::init() {
    host = std::make_unique<host_process_t>();
    const QJsonObject alice_in_clear{{"username", "alice"}, {"password", "alice-password"}};
    QVERIFY2(host->import(with(small_home(), "users/u-alice", alice_in_clear)),
             qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
    alice = std::make_unique<mqtt_client_t>();
    QVERIFY(join(*alice, *host, "alice"));
    QVERIFY(alice->wait_for(state_topic("alice", "e-therm")));
    alice->request(request_topic("alice", "get"));
    alice->forget();
}

void tst_live_changes::cleanup() {
    alice.reset();
    QCOMPARE(host->stop(), 0);
    host.reset();
}

void tst_live_changes::a_value_from_the_bus_side_is_pushed() {
    QCOMPARE(host->control({"set", "i-lamp", "1"}), 0);
    const auto state = alice->wait_for(state_topic("alice", "e-lamp"));
    QVERIFY(state);
    QCOMPARE(value_in(state->json(), "execute"), "1");
}

void tst_live_changes::an_element_renamed_in_an_sql_shell_is_pushed() {
    {
        QSqlDatabase shell = QSqlDatabase::addDatabase("QSQLITE", "shell");
        shell.setDatabaseName(host->data() + "/installation.db");
        QVERIFY(shell.open());
        QSqlQuery query(shell);
        QVERIFY2(query.exec("UPDATE elements SET name = 'Sink lamp' WHERE id = 'e-lamp'"),
                 qPrintable(query.lastError().text()));
    }
    QSqlDatabase::removeDatabase("shell");
    const auto state = alice->wait_for(state_topic("alice", "e-lamp"));
    QVERIFY(state);
    QCOMPARE(state->json()["data"]["name"], QJsonValue("Sink lamp"));
}

void tst_live_changes::an_import_replaces_everything() {
    QJsonObject home = with(small_home(), "elements/e-new", lamp("i-lamp"));
    home = with(home, "elements/e-night", QJsonValue::Undefined);
    home =
        with(home, "permissions/u-alice", QJsonObject{{"e-new", "readwrite"}, {"e-lamp", "read"}});
    QVERIFY2(host->import(home), qPrintable(host->error()));
    // The document's hash is another one, so that is another account: she has to come again.
    QTRY_VERIFY(!alice->is_connected());
    QVERIFY(join(*alice, *host, "alice"));
    QVERIFY(alice->wait_for(state_topic("alice", "e-new")));
    QCOMPARE(alice->request(request_topic("alice", "get"))["data"].toObject().keys(),
             (QStringList{"e-lamp", "e-new"}));
}

void tst_live_changes::an_import_is_heard_as_what_it_changes_data() {
    QTest::addColumn<QString>("name");
    QTest::newRow("nothing") << "Kitchen lamp";
    QTest::newRow("one name") << "Sink lamp";
}

void tst_live_changes::an_import_is_heard_as_what_it_changes() {
    QFETCH(QString, name);
    mqtt_client_t bob;
    QVERIFY(join(bob, *host, "bob"));
    for (auto [client, user] : {std::pair(alice.get(), "alice"), std::pair(&bob, "bob")}) {
        client->request(request_topic(user, "get"));
        client->forget();
    }
    // The password in clear text: she has it already, and stays signed in.
    const QJsonObject alice_in_clear{{"username", "alice"}, {"password", "alice-password"}};
    const QJsonObject home = with(small_home(), "users/u-alice", alice_in_clear);
    QVERIFY2(host->import(with(home, "elements/e-lamp/name", name)), qPrintable(host->error()));
    // What the import changed is heard before what is changed behind it.
    QCOMPARE(host->control({"set", "i-lamp", "1"}), 0);
    for (auto [client, user] : {std::pair(alice.get(), "alice"), std::pair(&bob, "bob")}) {
        QVERIFY2(client->wait_for([](const mqtt_client_t::message_t& _message) {
            return value_in(_message.json(), "execute") == "1";
        }),
                 user);
        for (const auto& message : client->messages()) {
            QCOMPARE(message.topic, state_topic(user, "e-lamp"));
            QVERIFY(!message.payload.isEmpty());
            QVERIFY(!message.retained);
        }
        QVERIFY(client->messages().size() <= (name == "Kitchen lamp" ? 1 : 2));
        QVERIFY(client->is_connected());
    }
}

void tst_live_changes::topic_that_changes_takes_the_connection_state_along() {
    const QString former = "local/installation/0001/connection";
    const QString later = "local/another/home/connection";
    QCOMPARE(connection_on(former), "online");
    const QJsonObject alice_in_clear{{"username", "alice"}, {"password", "alice-password"}};
    const QJsonObject home = with(small_home(), "users/u-alice", alice_in_clear);
    QVERIFY2(host->import(with(home, "topic", "another/home")), qPrintable(host->error()));
    QTRY_COMPARE(connection_on(later), "online");
    QCOMPARE(connection_on(former), QString());
    // So does the next broker.
    const qint64 broker = host->broker_pid();
    ::kill(pid_t(broker), SIGKILL);
    QTRY_VERIFY(host->broker_pid() > 1 && host->broker_pid() != broker);
    QTRY_COMPARE(connection_on(later), "online");
    QCOMPARE(connection_on(former), QString());
}

QString tst_live_changes::connection_on(const QString& _topic) const {
    mqtt_client_t comer;
    if (!join(comer, *host, "alice") || !comer.subscribe(_topic)) {
        return "nobody is let in";
    }
    // What lies retained comes before the answer.
    comer.request(request_topic("alice", "get"));
    for (const auto& message : comer.messages()) {
        if (message.topic == _topic) {
            return message.json()["state"].toString();
        }
    }
    return {};
}

void tst_live_changes::a_broken_import_changes_nothing() {
    QVERIFY(!host->import(with(small_home(), "elements/e-broken", lamp("i-none"))));
    QVERIFY2(host->error().contains("elements/e-broken/functions/execute"),
             qPrintable(host->error()));
    QCOMPARE(host->error().trimmed().count('\n'), 0);
    QCOMPARE(alice->request(request_topic("alice", "get", "e-lamp"))["data"]["type"],
             QJsonValue(1));
}

void tst_live_changes::values_are_back_after_a_restart() {
    alice->request(request_topic("alice", "set", "e-lamp"), write_payload("dim", 88));
    QVERIFY(alice->wait_for(state_topic("alice", "e-lamp")));
    alice->request(request_topic("alice", "set", "e-night"), write_payload("execute", true));
    QVERIFY(alice->wait_for(state_topic("alice", "e-night")));
    alice = std::make_unique<mqtt_client_t>();
    QCOMPARE(host->stop(), 0);
    QElapsedTimer clock;
    clock.start();
    QVERIFY2(host->start(), qPrintable(host->error()));
    QVERIFY2(clock.elapsed() < 3000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(join(*alice, *host, "alice"));
    QCOMPARE(value_in(alice->request(request_topic("alice", "get", "e-lamp")), "dim"), "88");
    QCOMPARE(value_in(alice->request(request_topic("alice", "get", "e-night")), "execute"), "true");
}

void tst_live_changes::simulated_temperatures_drift() {
    QCOMPARE(host->stop(), 0);
    QVERIFY2(host->start({"--simulate"}), qPrintable(host->error()));
    // The thermostat's measured temperature is an item of its own; the sample's sensors drift.
    QCOMPARE(host->control({"export"}), 0);
    const QByteArray before = host->control_output();
    QTRY_VERIFY_WITH_TIMEOUT(host->control({"export"}) == 0 && host->control_output() != before,
                             30000);
}

void tst_live_changes::the_export_of_a_running_host_imports_again() {
    QCOMPARE(host->control({"export"}), 0);
    const QByteArray exported = host->control_output();
    QVERIFY(!exported.contains("alice-password"));
    QVERIFY2(host->import(QJsonDocument::fromJson(exported).object()), qPrintable(host->error()));
    QCOMPARE(host->control({"export"}), 0);
    QCOMPARE(host->control_output(), exported);
}

QTEST_GUILESS_MAIN(tst_live_changes)
#include "tst_live_changes.moc"
