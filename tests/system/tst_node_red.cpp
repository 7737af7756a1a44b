#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/free_port.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {

const auto lamp = QStringLiteral("e-kitchen-ceiling");

QJsonArray read_flow(const QString& _name) {
    QFile file(_name);
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).array()
                                          : QJsonArray();
}

}  // namespace

/// The flow of examples/node-red in a Node-RED of the test's own. A second tab
/// (data/node-red-driver.json) calls what the example offers, as its readers' tabs would.
class tst_node_red : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();
    void reads_what_the_user_may_read();
    void unknown_element_is_told();
    void write_ends_when_the_value_is_there();
    void value_that_is_there_already_is_written_too();
    void refused_write_is_told();
    void value_that_does_not_come_is_told();
    void change_of_another_client_is_told();
    void element_that_is_withdrawn_goes();
    void restarted_server_is_followed();

 private:
    bool sign_in() {
        return alice.sign_in(host.port(), "alice", "sample-alice") == 0 &&
               alice.subscribe("local/api/v1/alice/#");
    }
    bool write_files();
    bool start_node_red();
    /// What the driver answers to @p _call; empty: nothing.
    QJsonObject say(const QJsonObject& _call);
    QJsonObject write(const QString& _element, const QString& _function, const QJsonValue& _value) {
        return say(
            {{"call", "write"}, {"element", _element}, {"function", _function}, {"value", _value}});
    }
    QJsonObject read(const QString& _element) {
        return say({{"call", "read"}, {"element", _element}});
    }
    /// Function -> value; empty: the flow does not know the element.
    QJsonObject known(const QString& _element) { return read(_element)["answer"].toObject(); }
    /// Waits for a change that the flow tells.
    bool hears(const QString& _element, const QString& _function, const QString& _value);
    void take_lines();

    host_process_t host;
    mqtt_client_t alice;
    QTemporaryDir folder;
    QProcess node_red;
    QTcpServer listener;
    QTcpSocket* driver = nullptr;
    QList<QJsonObject> answers;
    QList<QJsonObject> changes;
};

bool tst_node_red::write_files() {
    QJsonArray flow = read_flow(QStringLiteral(FLOW));
    for (const QJsonValue& node : read_flow(QStringLiteral(DRIVER))) {
        flow.append(node);
    }
    for (qsizetype i = 0; i < flow.size(); ++i) {
        QJsonObject node = flow[i].toObject();
        if (node["id"] == "changes") {
            node["links"] = QJsonArray{"told"};
            flow[i] = node;
        }
    }
    const QJsonObject account{{"user", "${TORLAN_USER}"}, {"password", "${TORLAN_PASSWORD}"}};
    const QList<QPair<QString, QByteArray>> files{
        {"flow.json", QJsonDocument(flow).toJson()},
        {"flow_cred.json", QJsonDocument(QJsonObject{{"server", account}}).toJson()},
        {"settings.js",
         "module.exports = { flowFile: 'flow.json', credentialSecret: false, uiHost: '127.0.0.1',"
         " uiPort: process.env.TEST_UI_PORT, httpAdminRoot: false, httpNodeRoot: false };"}};
    for (const auto& [name, text] : files) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            return false;
        }
    }
    return !flow.isEmpty();
}

bool tst_node_red::start_node_red() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("TORLAN_HOST", "127.0.0.1");
    environment.insert("TORLAN_PORT", QString::number(host.port()));
    environment.insert("TORLAN_USER", "bob");
    environment.insert("TORLAN_PASSWORD", QStringLiteral("sample-bob"));
    environment.insert("TEST_PORT", QString::number(listener.serverPort()));
    environment.insert("TEST_UI_PORT", QString::number(free_port()));
    node_red.setProcessEnvironment(environment);
    node_red.setProcessChannelMode(QProcess::MergedChannels);
    end_with_test(&node_red);
    node_red.start(QStringLiteral(TORLAN_NODE),
                   {QStringLiteral(NODE_RED "/node_modules/node-red/red.js"), "--userDir",
                    folder.path(), "--settings", folder.filePath("settings.js")});
    return wait_until([this]() { return listener.hasPendingConnections(); }, 60'000);
}

void tst_node_red::initTestCase() {
    if (!QFile::exists(QStringLiteral(NODE_RED "/stamp"))) {
        QSKIP("NOT RUN: there is no Node-RED; packaging/fetch-node-red build/node-red fetches it");
    }
    QVERIFY2(host.control({"import", QStringLiteral(SAMPLE)}) == 0, qPrintable(host.error()));
    QCOMPARE(host.control({"grant", "bob", "e-kitchen-window", "readwrite"}), 0);
    QCOMPARE(host.control({"grant", "bob", lamp, "readwrite"}), 0);
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(sign_in());
    QVERIFY(listener.listen(QHostAddress::LocalHost));
    QVERIFY(write_files());
    QVERIFY2(start_node_red(), node_red.readAll().constData());
    driver = listener.nextPendingConnection();
    // It knows the home when it has asked for all.
    QVERIFY2(wait_until([this]() { return !known(lamp).isEmpty(); }),
             node_red.readAll().constData());
}

void tst_node_red::cleanupTestCase() {
    node_red.terminate();
    QVERIFY(node_red.state() == QProcess::NotRunning || node_red.waitForFinished());
}

void tst_node_red::init() {
    QCOMPARE(
        value_in(alice.request(request_topic("alice", "set", lamp), write_payload("execute", 1)),
                 "execute"),
        QString());
    QVERIFY(wait_until([this]() { return known(lamp)["execute"] == "1"; }));
    take_lines();
    answers.clear();
    changes.clear();
}

void tst_node_red::take_lines() {
    while (driver->canReadLine()) {
        const QJsonObject line = QJsonDocument::fromJson(driver->readLine()).object();
        (line.contains("change") ? changes : answers).append(line);
    }
}

QJsonObject tst_node_red::say(const QJsonObject& _call) {
    answers.clear();
    driver->write(QJsonDocument(_call).toJson(QJsonDocument::Compact) + '\n');
    const bool came = wait_until([this]() {
        take_lines();
        return !answers.isEmpty();
    });
    return came ? answers.takeFirst() : QJsonObject();
}

bool tst_node_red::hears(const QString& _element, const QString& _function, const QString& _value) {
    const QJsonObject wanted{{"element", _element}, {"function", _function}, {"value", _value}};
    return wait_until([&]() {
        take_lines();
        return std::any_of(changes.cbegin(), changes.cend(), [&](const QJsonObject& _line) {
            return _line["change"].toObject() == wanted;
        });
    });
}

void tst_node_red::reads_what_the_user_may_read() {
    const QJsonObject thermostat = known("e-living-thermostat");
    QVERIFY(thermostat.contains("thermo/setpoint"));
}

void tst_node_red::unknown_element_is_told() {
    QCOMPARE(read("e-nowhere")["error"].toString(), QString("e-nowhere cannot be read"));
}

void tst_node_red::write_ends_when_the_value_is_there() {
    const QJsonObject written = write(lamp, "execute", 0);
    QVERIFY2(!written.contains("error"), qPrintable(written["error"].toString()));
    QCOMPARE(written["answer"].toObject()["value"].toInt(-1), 0);
    QCOMPARE(known(lamp)["execute"].toString(), QString("0"));
    QVERIFY(hears(lamp, "execute", "0"));
}

void tst_node_red::value_that_is_there_already_is_written_too() {
    QVERIFY(!write(lamp, "execute", 1).contains("error"));
}

void tst_node_red::refused_write_is_told() {
    QCOMPARE(write(lamp, "execute", "eco")["error"].toString(), QString("refused: 404"));
    QCOMPARE(write("e-hall-ceiling", "execute", 1)["error"].toString(),
             QString("refused: 401 Configure user on API on App"));
}

void tst_node_red::value_that_does_not_come_is_told() {
    // A contact takes no value: "202", and nothing follows.
    const QJsonObject state = known("e-kitchen-window");
    const int other = state["open"] == "1" ? 0 : 1;
    QCOMPARE(write("e-kitchen-window", "open", other)["error"].toString(), QString("timeout"));
    QCOMPARE(known("e-kitchen-window"), state);
}

void tst_node_red::change_of_another_client_is_told() {
    alice.request(request_topic("alice", "set", lamp), write_payload("execute", 0));
    QVERIFY(hears(lamp, "execute", "0"));
}

void tst_node_red::element_that_is_withdrawn_goes() {
    QVERIFY(!known("e-living-thermostat").isEmpty());
    QCOMPARE(host.control({"grant", "bob", "e-living-thermostat", "deny"}), 0);
    QVERIFY(wait_until([this]() { return read("e-living-thermostat").contains("error"); }));
    QCOMPARE(host.control({"grant", "bob", "e-living-thermostat", "read"}), 0);
    QVERIFY(wait_until([this]() { return !known("e-living-thermostat").isEmpty(); }));
}

void tst_node_red::restarted_server_is_followed() {
    QCOMPARE(host.stop(), 0);
    QCOMPARE(host.control({"set", "i-kitchen-ceiling", "0"}), 0);
    QVERIFY2(host.start(), qPrintable(host.error()));
    QVERIFY(hears(lamp, "execute", "0"));
    QVERIFY(sign_in());
    QVERIFY(!write(lamp, "execute", 1).contains("error"));
}

QTEST_GUILESS_MAIN(tst_node_red)
#include "tst_node_red.moc"
