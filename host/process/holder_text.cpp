#include "process/holder_text.h"

#include <QFile>

#include "process/file_lock_t.h"

namespace process {

QString holder_text(const file_lock_t& _lock) {
    if (_lock.holder() == 0) {
        return QStringLiteral("a process that cannot be seen from here");
    }
    QFile name(QStringLiteral("/proc/%1/comm").arg(_lock.holder()));
    const QString program = name.open(QIODevice::ReadOnly)
                                ? QString::fromLocal8Bit(name.readAll()).trimmed()
                                : QString();
    const QString process = QStringLiteral("process %1").arg(_lock.holder());
    return program.isEmpty() ? process : process + QStringLiteral(" (%1)").arg(program);
}

}  // namespace process
