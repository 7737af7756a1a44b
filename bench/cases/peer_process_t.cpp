#include "bench/cases/peer_process_t.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "kit/end_with_test.h"
#include "kit/free_port.h"

namespace bench {

namespace {

constexpr int longest_start_ms = 60'000;
constexpr int longest_end_ms = 5'000;

}  // namespace

peer_process_t::peer_process_t() {
    kit::end_with_test(&process);
    process.setProcessChannelMode(QProcess::MergedChannels);
}

peer_process_t::~peer_process_t() {
    process.terminate();
    if (!process.waitForFinished(longest_end_ms)) {
        process.kill();
        process.waitForFinished(longest_end_ms);
    }
}

bool peer_process_t::furnish(const QString& _installed, const door_t& _door) const {
    const QJsonObject account{{"user", QString::fromStdString(_door.user)},
                              {"password", QString::fromStdString(_door.password)}};
    QFile credentials(folder.filePath("flow_cred.json"));
    return QFile::copy(_installed + "/flow.json", folder.filePath("flow.json")) &&
           QFile::copy(_installed + "/settings.js", folder.filePath("settings.js")) &&
           credentials.open(QIODevice::WriteOnly) &&
           credentials.write(QJsonDocument(QJsonObject{{"broker", account}}).toJson()) > 0;
}

base::result_t peer_process_t::start(const QString& _installed, const door_t& _door) {
    if (!furnish(_installed, _door)) {
        return base::result_t::failed(
            QStringLiteral("%1 has no peer; bench/run --peer makes it.").arg(_installed));
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PEER_UI_PORT", QString::number(kit::free_port()));
    environment.insert("PEER_BROKER_PORT", QString::number(_door.port));
    process.setProcessEnvironment(environment);
    process.start("node", {_installed + "/node_modules/node-red/red.js", "--userDir", folder.path(),
                           "--settings", folder.filePath("settings.js")});
    QByteArray said;
    const QDeadlineTimer limit(longest_start_ms);
    while (!said.contains("Connected to broker") && !limit.hasExpired() &&
           process.state() != QProcess::NotRunning) {
        process.waitForReadyRead(1'000);
        said += process.readAll();
    }
    return said.contains("Connected to broker")
               ? base::result_t()
               : base::result_t::failed("Node-RED did not connect to the broker: " +
                                        QString::fromUtf8(said.right(500)));
}

}  // namespace bench
