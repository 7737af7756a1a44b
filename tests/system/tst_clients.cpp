#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/real_broker_t.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"
#include "system/support/children_of.h"

using namespace kit;
using namespace support;

/// The clients of examples/, as their readers run them, against the real server and the sample
/// home.
class tst_clients : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void init();
    void reads_an_element_data() { clients(); }
    void reads_an_element();
    void write_ends_when_the_value_is_there_data() { clients(); }
    void write_ends_when_the_value_is_there();
    void value_that_is_there_already_is_written_too_data() { clients(); }
    void value_that_is_there_already_is_written_too();
    void change_of_another_client_is_followed_data() { clients(); }
    void change_of_another_client_is_followed();
    void refused_write_is_told_data() { clients(); }
    void refused_write_is_told();
    void value_that_does_not_come_is_told_data() { clients(); }
    void value_that_does_not_come_is_told();
    void wrong_password_is_told_data() { clients(); }
    void wrong_password_is_told();
    void state_that_overtakes_the_answer_counts_data() { clients(); }
    void state_that_overtakes_the_answer_counts();
    void missing_library_is_named_data();
    void missing_library_is_named();

 private:
    struct outcome_t {
        int status;
        QString said;
        QString complained;
    };
    static void clients();
    static QString sample_password(const QString& _user) {
        return QStringLiteral("sample-") + _user;
    }
    QProcessEnvironment environment(const QString& _user, const QString& _password) const;
    /// Starts the row's client.
    std::unique_ptr<QProcess> started(const QStringList& _words,
                                      const QProcessEnvironment& _environment);
    outcome_t run(const QStringList& _words, const QProcessEnvironment& _environment);
    outcome_t run(const QStringList& _words, const QString& _user = QStringLiteral("alice")) {
        return run(_words, environment(_user, sample_password(_user)));
    }

    host_process_t host;
    mqtt_client_t alice;
};

namespace {

const auto lamp = QStringLiteral("e-kitchen-ceiling");

}  // namespace

void tst_clients::clients() {
    QTest::addColumn<QStringList>("command");
    const QString folder = QStringLiteral(CLIENTS "/client.");
    QTest::newRow("shell") << QStringList{"/bin/bash", folder + "sh"};
    // Debian's own, which has Debian's paho.
    QTest::newRow("Python") << QStringList{"/usr/bin/python3", folder + "py"};
    QTest::newRow("JavaScript") << QStringList{TORLAN_NODE, folder + "js"};
    QTest::newRow("C++") << QStringList{CLIENT};
}

QProcessEnvironment tst_clients::environment(const QString& _user, const QString& _password) const {
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    result.insert(QStringLiteral("TORLAN_USER"), _user);
    result.insert(QStringLiteral("TORLAN_PASSWORD"), _password);
    result.insert(QStringLiteral("TORLAN_PORT"), QString::number(host.port()));
    result.insert(QStringLiteral("NODE_PATH"), QStringLiteral(NODE_LIBRARIES));
    return result;
}

std::unique_ptr<QProcess> tst_clients::started(const QStringList& _words,
                                               const QProcessEnvironment& _environment) {
    QFETCH(QStringList, command);
    auto client = std::make_unique<QProcess>();
    kit::end_with_test(client.get());
    client->setProcessEnvironment(_environment);
    client->start(command.first(), command.mid(1) + _words);
    return client;
}

tst_clients::outcome_t tst_clients::run(const QStringList& _words,
                                        const QProcessEnvironment& _environment) {
    const auto client = started(_words, _environment);
    if (!wait_until([&]() { return client->state() == QProcess::NotRunning; })) {
        return {-1, {}, QStringLiteral("does not end")};
    }
    return {client->exitStatus() == QProcess::NormalExit ? client->exitCode() : -1,
            QString::fromUtf8(client->readAllStandardOutput()),
            QString::fromUtf8(client->readAllStandardError())};
}

void tst_clients::initTestCase() {
    QVERIFY2(host.control({"import", QStringLiteral(SAMPLE)}) == 0, qPrintable(host.error()));
    QVERIFY2(host.start(), qPrintable(host.error()));
    QCOMPARE(alice.sign_in(host.port(), "alice", sample_password("alice")), 0);
    QVERIFY(alice.subscribe("local/api/v1/alice/#"));
}

void tst_clients::init() {
    // The lamp is on.
    const QJsonObject answer =
        alice.request(request_topic("alice", "set", lamp), write_payload("execute", 1));
    QCOMPARE(answer["data"]["functions"]["execute"].toString(), QString("202"));
    QVERIFY(wait_until([this]() {
        return value_in(alice.request(request_topic("alice", "get", lamp)), "execute") == "1";
    }));
    alice.forget();
}

void tst_clients::reads_an_element() {
    const outcome_t one = run({"read", lamp});
    QVERIFY2(one.status == 0, qPrintable(one.complained));
    QVERIFY2(one.said.contains("\"execute\""), qPrintable(one.said));
    QVERIFY2(!one.said.contains("\"level\""), qPrintable(one.said));
    const outcome_t all = run({"read"});
    QVERIFY2(all.status == 0, qPrintable(all.complained));
    QVERIFY2(all.said.contains("\"e-living-thermostat\""), qPrintable(all.said));
}

void tst_clients::write_ends_when_the_value_is_there() {
    const outcome_t written = run({"write", lamp, "execute", "0"});
    QVERIFY2(written.status == 0, qPrintable(written.complained));
    QCOMPARE(written.said, lamp + " execute 0\n");
    QCOMPARE(value_in(alice.request(request_topic("alice", "get", lamp)), "execute"), QString("0"));
}

void tst_clients::value_that_is_there_already_is_written_too() {
    const outcome_t written = run({"write", lamp, "execute", "1"});
    QVERIFY2(written.status == 0, qPrintable(written.complained));
    QVERIFY(alice.wait_for([](const mqtt_client_t::message_t& _message) {
        return _message.topic.endsWith("/status/set/elements/objects_list/" + lamp);
    }));
}

void tst_clients::change_of_another_client_is_followed() {
    const auto client = started({"follow"}, environment("bob", sample_password("bob")));
    QByteArray said;
    const auto hears = [&](const QByteArray& _text) {
        return wait_until(
            [&]() { return (said += client->readAllStandardOutput()).contains(_text); });
    };
    QVERIFY2(hears("e-living-thermostat"), said + client->readAllStandardError());
    // Everybody on the machine reads command lines.
    QList<qint64> processes = children_of(client->processId()).values();
    processes << client->processId();
    for (const qint64 process : processes) {
        QFile line(QStringLiteral("/proc/%1/cmdline").arg(process));
        QVERIFY(line.open(QIODevice::ReadOnly));
        QVERIFY(!line.readAll().contains("sample-bob"));
    }
    said.clear();
    QCOMPARE(alice.publish(request_topic("alice", "set", lamp),
                           R"({"data":{"functions":{"execute":0}}})"),
             0);
    QVERIFY2(hears(lamp.toUtf8()), said + client->readAllStandardError());
    client->terminate();
    QVERIFY(wait_until([&]() { return client->state() == QProcess::NotRunning; }));
}

void tst_clients::refused_write_is_told() {
    // The value is no number; the user may read only.
    const QList<QPair<QString, QString>> refused{{"alice", "\"eco\""}, {"bob", "0"}};
    for (const auto& [user, value] : refused) {
        const outcome_t written = run({"write", lamp, "execute", value}, user);
        QVERIFY2(written.status > 0, qPrintable(written.said));
        QVERIFY2(written.complained.contains("refused: {"), qPrintable(written.complained));
    }
    QCOMPARE(value_in(alice.request(request_topic("alice", "get", lamp)), "execute"), QString("1"));
}

void tst_clients::value_that_does_not_come_is_told() {
    // A contact takes no value: "202", and nothing follows.
    QProcessEnvironment hasty = environment("alice", sample_password("alice"));
    hasty.insert("TORLAN_WAIT", "2");
    const outcome_t written = run({"write", "e-kitchen-window", "open", "1"}, hasty);
    QVERIFY2(written.status > 0, qPrintable(written.said));
    QVERIFY2(written.complained.contains("e-kitchen-window open"), qPrintable(written.complained));
}

void tst_clients::wrong_password_is_told() {
    const outcome_t read = run({"read"}, environment("alice", "wrong"));
    QVERIFY2(read.status > 0, qPrintable(read.said));
    QVERIFY2(read.complained.contains("ot authorized"), qPrintable(read.complained));
}

void tst_clients::state_that_overtakes_the_answer_counts() {
    QFETCH(QStringList, command);
    if (command.last().endsWith(".sh")) {
        return;  // shows messages as they come
    }
    // The real broker, and the test in the server's place: the order is up to it.
    kit::real_broker_t broker;
    QCOMPARE(broker.start(), QString());
    mqtt_client_t server;
    QCOMPARE(broker.let_host_in(&server), 0);
    QVERIFY(server.subscribe("local/api/v1/+/+/request/#"));
    QProcessEnvironment place = environment("alice", password_of("alice"));
    place.insert("TORLAN_PORT", QString::number(broker.settings.port));
    const auto client = started({"read"}, place);
    const auto question = server.wait_for(
        [](const mqtt_client_t::message_t& _message) { return _message.topic.contains("/get/"); });
    QVERIFY2(question != nullptr, client->readAllStandardError().constData());
    QCOMPARE(server.publish(state_topic("alice", "e-1"),
                            R"({"data":{"functions":{"execute":{"value":"1"}}}})"),
             0);
    QCOMPARE(server.publish(state_topic("alice", "e-2"), {}), 0);
    QCOMPARE(server.publish(QString(question->topic).replace("/request/", "/status/"),
                            R"({"data":{
        "e-1":{"functions":{"execute":{"value":"0"},"level":{"value":"5"}},"name":"1","type":2},
        "e-2":{"functions":{"execute":{"value":"0"}},"name":"2","type":1}}})"),
             0);
    QVERIFY(wait_until([&]() { return client->state() == QProcess::NotRunning; }));
    const QJsonObject read = QJsonDocument::fromJson(client->readAllStandardOutput()).object();
    const QJsonObject expected{{"e-1", QJsonObject{{"execute", "1"}, {"level", "5"}}}};
    QCOMPARE(read, expected);
}

void tst_clients::missing_library_is_named_data() {
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("package");
    const QString folder = QStringLiteral(CLIENTS "/client.");
    QTest::newRow("shell") << QStringList{"/bin/bash", folder + "sh"} << "mosquitto-clients";
    QTest::newRow("Python") << QStringList{"/usr/bin/python3", "-S", folder + "py"}
                            << "python3-paho-mqtt";
    QTest::newRow("JavaScript") << QStringList{TORLAN_NODE, folder + "js"} << "node-mqtt";
}

void tst_clients::missing_library_is_named() {
    QFETCH(QString, package);
    QProcessEnvironment bare = environment("alice", sample_password("alice"));
    bare.insert("PATH", "/nowhere");
    bare.insert("NODE_PATH", "/nowhere");
    const outcome_t read = run({"read"}, bare);
    QVERIFY2(read.status > 0, qPrintable(read.said));
    QVERIFY2(read.complained.contains(package), qPrintable(read.complained));
}

QTEST_GUILESS_MAIN(tst_clients)
#include "tst_clients.moc"
