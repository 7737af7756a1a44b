#include "system/support/host_process_t.h"

#include <QEventLoop>
#include <QFile>
#include <QJsonDocument>
#include <QTimer>

#include "kit/end_with_test.h"
#include "kit/free_port.h"

namespace support {

namespace {
// Benchmarks start a million states with it.
constexpr int start_timeout_ms = 300000;
constexpr int tool_timeout_ms = 300000;
constexpr int stop_timeout_ms = 15000;
}  // namespace

host_process_t::host_process_t() : broker_port(kit::free_port()) {
    kit::end_with_test(&server);
}

host_process_t::~host_process_t() {
    stop();
}

bool host_process_t::import(const QJsonObject& _installation) {
    QFile file(folder.filePath(QStringLiteral("import.json")));
    if (!file.open(QIODevice::WriteOnly)) {
        return false;
    }
    file.write(QJsonDocument(_installation).toJson());
    file.close();
    return control({QStringLiteral("import"), file.fileName()}) == 0;
}

int host_process_t::control(const QStringList& _arguments, const QByteArray& _input) {
    QProcess torlanctl;
    torlanctl.start(QStringLiteral(TORLANCTL),
                    QStringList{QStringLiteral("--data"), folder.path()} + _arguments);
    torlanctl.write(_input);
    torlanctl.closeWriteChannel();
    if (!torlanctl.waitForFinished(tool_timeout_ms)) {
        return -1;
    }
    last_error = QString::fromUtf8(torlanctl.readAllStandardError());
    last_output = torlanctl.readAllStandardOutput();
    return torlanctl.exitCode();
}

void host_process_t::use_settings(const QJsonObject& _settings) {
    QFile file(settings_file());
    if (file.open(QIODevice::WriteOnly)) {
        file.write(QJsonDocument(_settings).toJson());
    }
}

bool host_process_t::start(const QStringList& _more_arguments) {
    if (!QFile::exists(settings_file())) {
        use_settings({{QStringLiteral("static"), QJsonObject()}});
    }
    config.reset();  // it holds the file
    const qsizetype user = _more_arguments.indexOf(QStringLiteral("--user"));
    config = std::make_unique<config_process_t>(
        settings_file(), user < 0 ? QStringList() : _more_arguments.mid(user, 2));
    server.start(QStringLiteral(TORLAN_SERVER),
                 QStringList{QStringLiteral("--data"), folder.path(), QStringLiteral("--port"),
                             QString::number(broker_port), QStringLiteral("--config-port"),
                             QString::number(config->port())} +
                     _more_arguments);
    shown.clear();
    QEventLoop loop;
    bool ready = false;
    const auto read = QObject::connect(&server, &QProcess::readyReadStandardOutput, &loop, [&]() {
        while (server.canReadLine()) {
            const QByteArray line = server.readLine();
            shown += line;
            ready = line.startsWith("torlan: ready") || ready;
        }
        if (ready) {
            loop.quit();
        }
    });
    QObject::connect(&server, &QProcess::finished, &loop, &QEventLoop::quit);
    QObject::connect(&server, &QProcess::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(start_timeout_ms, &loop, &QEventLoop::quit);
    loop.exec();
    QObject::disconnect(read);
    if (!ready) {
        stop();
        last_error = QString::fromUtf8(server.readAllStandardError());
    }
    return ready;
}

int host_process_t::stop() {
    if (server.state() == QProcess::NotRunning) {
        return server.exitCode();
    }
    server.terminate();
    if (server.waitForFinished(stop_timeout_ms)) {
        return server.exitStatus() == QProcess::NormalExit ? server.exitCode() : -1;
    }
    server.kill();
    server.waitForFinished(stop_timeout_ms);
    return -1;
}

int host_process_t::resident_mib_of(qint64 _pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(_pid));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmRSS:")) {
            return line.mid(6).simplified().split(' ').first().toInt() / 1024;
        }
    }
    return -1;
}

qint64 host_process_t::broker_pid() const {
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(pid()));
    return children.open(QIODevice::ReadOnly)
               ? children.readAll().simplified().split(' ').first().toLongLong()
               : 0;
}

}  // namespace support
