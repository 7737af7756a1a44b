#pragma once

#include <QDir>
#include <QFile>

namespace support {

/// What a process has at this moment.
struct process_size_t {
    double mib = 0;  ///< resident
    int descriptors = 0;
    int threads = 0;

    /// Zeros: there is no such process.
    static process_size_t of(qint64 _process) {
        process_size_t size;
        const QString folder = QStringLiteral("/proc/%1/").arg(_process);
        QFile status(folder + QStringLiteral("status"));
        if (!status.open(QIODevice::ReadOnly)) {
            return size;
        }
        for (const QByteArray& line : status.readAll().split('\n')) {
            const QByteArray number = line.mid(line.indexOf(':') + 1).simplified().split(' ')[0];
            if (line.startsWith("VmRSS:")) {
                size.mib = number.toDouble() / 1024;
            } else if (line.startsWith("Threads:")) {
                size.threads = number.toInt();
            }
        }
        size.descriptors =
            int(QDir(folder + QStringLiteral("fd"))
                    .entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System)
                    .size());
        return size;
    }
};

}  // namespace support
