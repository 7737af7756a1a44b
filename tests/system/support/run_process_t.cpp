#include "system/support/run_process_t.h"

#include <QFile>
#include <QRegularExpression>

#include "kit/end_with_test.h"
#include "kit/free_port.h"

namespace support {

namespace {

constexpr int start_ms = 60'000;

qint64 find_below(qint64 _process, const QByteArray& _name) {
    QFile list(QStringLiteral("/proc/%1/task/%1/children").arg(_process));
    if (!list.open(QIODevice::ReadOnly)) {
        return 0;
    }
    for (const QByteArray& id : list.readAll().simplified().split(' ')) {
        QFile name("/proc/" + id + "/comm");
        if (id.isEmpty() || !name.open(QIODevice::ReadOnly)) {
            continue;
        }
        if (name.readAll().trimmed() == _name) {
            return id.toLongLong();
        }
        if (const qint64 found = find_below(id.toLongLong(), _name); found != 0) {
            return found;
        }
    }
    return 0;
}

}  // namespace

run_process_t::run_process_t() : broker_port(kit::free_port()) {}

run_process_t::~run_process_t() {
    if (program.state() != QProcess::NotRunning) {
        stop();
    }
}

bool run_process_t::start(const QString& _home, const QStringList& _more_arguments) {
    kit::end_with_test(&program);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(TORLAN_RUN, QStringList{"--data", data(), "--port", QString::number(broker_port),
                                          "--config-port", QString::number(kit::free_port()),
                                          "--sample", _home, "--log-level-std", "2", "--web-port",
                                          QString::number(kit::free_port()), "--ws-port",
                                          QString::number(kit::free_port())} +
                                  _more_arguments);
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
        if (line.isEmpty()) {
            break;
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
    return find_below(program.processId(), _name.toUtf8());
}

}  // namespace support
