#pragma once

#include <QFile>

namespace kit {

/// The process is gone, or dead and not yet collected by its parent.
inline bool has_ended(qint64 _process) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(_process));
    const QByteArray state = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return state.isEmpty() || state.mid(state.lastIndexOf(')') + 2, 1) == "Z";
}

}  // namespace kit
