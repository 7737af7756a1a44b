#include <QtTest>

#include "kit/end_with_test.h"
#include "kit/free_port.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"
#include "system/support/document_blocks.h"

using namespace kit;
using namespace support;

/// docs/api.md as its readers try it: every example against the real server with the sample home.
class tst_api_document : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void every_example_prints_what_it_says();
    void bridge_brings_every_state_and_carries_requests();

 private:
    std::unique_ptr<host_process_t> host;
};

namespace {

QString text_of(const QString& _path) {
    QFile file(_path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

}  // namespace

void tst_api_document::init() {
    host = std::make_unique<host_process_t>();
    QVERIFY2(host->control({"import", QStringLiteral(SAMPLE)}) == 0, qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
}

void tst_api_document::every_example_prints_what_it_says() {
    QList<document_block_t> examples = document_blocks(QStringLiteral(DOCUMENT));
    QVERIFY(examples.size() > 7);
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME", home.path());
    QString begin = examples.takeFirst().commands;
    QVERIFY(begin.contains("'-p 1883'"));
    begin.replace("'-p 1883'", QStringLiteral("'-p %1'").arg(host->port()));
    for (const document_block_t& example : qAsConst(examples)) {
        QProcess shell;
        kit::end_with_test(&shell);
        shell.setProcessEnvironment(environment);
        shell.start("/bin/bash", {"-euc", begin + example.commands});
        QVERIFY2(shell.waitForFinished(20000), qPrintable(example.commands));
        QVERIFY2(!example.printed.isEmpty(), qPrintable(example.commands));
        QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), example.printed);
        QCOMPARE(QString::fromUtf8(shell.readAllStandardError()), QString());
    }
}

void tst_api_document::bridge_brings_every_state_and_carries_requests() {
    const quint16 port = free_port();
    const QTemporaryDir folder;
    QFile file(folder.filePath("bridge.conf"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QString text = text_of(QStringLiteral(BRIDGE));
    QVERIFY(text.contains("listener 1884") && text.contains(":1883"));
    text.replace("listener 1884", QStringLiteral("listener %1").arg(port))
        .replace(":1883", QStringLiteral(":%1").arg(host->port()));
    file.write(text.toUtf8());
    file.close();
    QProcess broker;
    kit::end_with_test(&broker);
    broker.setProcessChannelMode(QProcess::MergedChannels);
    broker.start("/usr/sbin/mosquitto", {"-c", file.fileName()});

    mqtt_client_t behind;
    QVERIFY(wait_until([&]() { return behind.sign_in(port, "anybody", "") == 0; }));
    QVERIFY(behind.subscribe("local/api/v1/alice/#"));
    mqtt_client_t alice;
    QCOMPARE(alice.sign_in(host->port(), "alice", "sample-alice"), 0);
    QVERIFY(alice.subscribe("local/api/v1/alice/me/#"));
    const QStringList elements =
        alice.request(request_topic("alice", "get"))["data"].toObject().keys();
    QVERIFY(elements.size() > 40);
    for (const QString& element : elements) {
        QVERIFY2(behind.wait_for(state_topic("alice", element)), qPrintable(element));
    }
    const QString lamp = QStringLiteral("e-kitchen-ceiling");
    const QJsonObject answer =
        behind.request(request_topic("alice", "set", lamp), write_payload("execute", 0));
    QCOMPARE(answer["data"]["functions"]["execute"].toString(), QString("202"));
    QVERIFY(behind.wait_for([&](const mqtt_client_t::message_t& _message) {
        return _message.topic == state_topic("alice", lamp) &&
               value_in(_message.json(), "execute") == "0";
    }));
    broker.terminate();
    QVERIFY(broker.waitForFinished());
}

QTEST_GUILESS_MAIN(tst_api_document)
#include "tst_api_document.moc"
