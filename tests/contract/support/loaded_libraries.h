#pragma once

#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace support {

/// File names of what is mapped into this process: the program itself and its libraries.
inline QSet<QString> loaded_libraries() {
    QFile maps(QStringLiteral("/proc/self/maps"));
    QSet<QString> names;
    if (maps.open(QIODevice::ReadOnly)) {
        const QStringList lines = QString::fromLocal8Bit(maps.readAll()).split(u'\n');
        for (const QString& line : lines) {
            const qsizetype path = line.indexOf(u'/');
            if (path >= 0) {
                names.insert(QFileInfo(line.mid(path)).fileName());
            }
        }
    }
    return names;
}

}  // namespace support
