#include "system/support/run_process_t.h"

#include <QRegularExpression>

#include "kit/end_with_test.h"
#include "kit/free_port.h"
#include "system/support/children_of.h"

namespace support {

namespace {

constexpr int start_ms = 60'000;

qint64 find_below(qint64 _process, const QString& _name) {
    const QMap<QString, qint64> children = children_of(_process);
    if (const qint64 found = children.value(_name); found != 0) {
        return found;
    }
    for (const qint64 child : children) {
        if (const qint64 found = find_below(child, _name); found != 0) {
            return found;
        }
    }
    return 0;
}

QList<qint64> all_below(qint64 _process) {
    QList<qint64> found;
    for (const qint64 child : children_of(_process)) {
        found += child;
        found += all_below(child);
    }
    return found;
}

}  // namespace

run_process_t::run_process_t()
    : broker_port(kit::free_port()),
      config(kit::free_port()),
      web(kit::free_port()),
      websocket(kit::free_port()) {}

run_process_t::~run_process_t() {
    if (program.state() != QProcess::NotRunning) {
        stop();
    }
}

bool run_process_t::start(const QString& _home, const QStringList& _more_arguments) {
    const bool has_console = !_more_arguments.contains(QStringLiteral("--no-web"));
    QStringList arguments{"--data",          data(),
                          "--port",          QString::number(broker_port),
                          "--config-port",   QString::number(config),
                          "--sample",        _home,
                          "--log-level-std", "2"};
    if (has_console) {
        arguments += {"--web-port", QString::number(web), "--ws-port", QString::number(websocket)};
    }
    output.clear();
    kit::end_with_test(&program);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(TORLAN_RUN, arguments + _more_arguments);
    static const QRegularExpression place(QStringLiteral("the console is at (\\S+)"));
    while (program.state() != QProcess::NotRunning) {
        while (!program.canReadLine() && program.waitForReadyRead(start_ms)) {
        }
        const QByteArray line = program.readLine();
        output += line;
        if (const auto match = place.match(QString::fromUtf8(line)); match.hasMatch()) {
            address = match.captured(1);
            return output.contains("torlan: ready");
        }
        if (line.isEmpty() || (!has_console && line.startsWith("torlan: ready"))) {
            return !line.isEmpty();
        }
    }
    return false;
}

int run_process_t::stop() {
    program.terminate();
    if (!program.waitForFinished(start_ms)) {
        program.kill();
        program.waitForFinished();
        return -1;
    }
    return program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
}

int run_process_t::control(const QStringList& _arguments, const QByteArray& _input) {
    QProcess process;
    process.start(TORLANCTL, QStringList{"--data", data()} + _arguments);
    process.write(_input);
    process.closeWriteChannel();
    return process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
               ? process.exitCode()
               : -1;
}

qint64 run_process_t::descendant(const QString& _name) const {
    return find_below(program.processId(), _name);
}

QList<qint64> run_process_t::descendants() const {
    return all_below(program.processId());
}

}  // namespace support
