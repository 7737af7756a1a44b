#pragma once

#include <signal.h>

#include <QProcess>
#include <QStringList>

#include "kit/end_with_test.h"

namespace support {

constexpr int process_timeout_ms = 20000;

/// A torlan-config of the test's own, on a free port; killed with it.
class config_process_t {
 public:
    explicit config_process_t(const QString& _file, const QStringList& _more = {}) {
        process.setProcessChannelMode(QProcess::SeparateChannels);
        kit::end_with_test(&process);
        process.start(QStringLiteral(TORLAN_CONFIG),
                      QStringList{QStringLiteral("--file"), _file, QStringLiteral("--port"),
                                  QStringLiteral("0")} +
                          _more);
        while (!process.canReadLine() && process.waitForReadyRead(process_timeout_ms)) {
        }
        ready_line = process.readLine().trimmed();
    }
    ~config_process_t() { kill(); }
    Q_DISABLE_COPY_MOVE(config_process_t)

    void kill() {
        process.kill();
        process.waitForFinished(process_timeout_ms);
    }
    /// Its exit status; -1 when it did not end by itself.
    int end(int _signal) {
        ::kill(pid_t(process.processId()), _signal);
        const bool ended = process.waitForFinished(process_timeout_ms);
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    QString url() const { return QString::fromUtf8(ready_line.mid(ready_line.indexOf("http://"))); }
    quint16 port() const { return url().section(QLatin1Char(':'), 2).chopped(1).toUShort(); }

    QProcess process;
    QByteArray ready_line;
};

}  // namespace support
