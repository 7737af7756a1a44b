#pragma once

#include <QFile>
#include <QMap>
#include <QString>

namespace support {

/// Process ids of the children of a process by program name, as the kernel cuts it off.
inline QMap<QString, qint64> children_of(qint64 _process) {
    QMap<QString, qint64> found;
    QFile list(QStringLiteral("/proc/%1/task/%1/children").arg(_process));
    if (list.open(QIODevice::ReadOnly)) {
        for (const QByteArray& id : list.readAll().simplified().split(' ')) {
            QFile name("/proc/" + id + "/comm");
            if (name.open(QIODevice::ReadOnly)) {
                found.insert(QString::fromUtf8(name.readAll().trimmed()), id.toLongLong());
            }
        }
    }
    return found;
}

}  // namespace support
