#include "program/port_holder.h"

#include <unistd.h>

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include "program/socket_owner_t.h"

namespace torlan {

namespace {

bool has_socket(const QString& _process, const QString& _target) {
    QDirIterator each(_process + QStringLiteral("/fd"), QDir::AllEntries | QDir::System);
    while (each.hasNext()) {
        // Not symLinkTarget(): what it says is no path.
        char target[64] = {};
        const QByteArray link = QFile::encodeName(each.next());
        if (::readlink(link.constData(), target, sizeof target - 1) > 0 &&
            _target == QLatin1String(target)) {
            return true;
        }
    }
    return false;
}

/// "process 17 (nc)"; empty: none that we may look into.
QString process_of(quint64 _inode) {
    const QString target = QStringLiteral("socket:[%1]").arg(_inode);
    QDirIterator each(QStringLiteral("/proc"), {QStringLiteral("[0-9]*")}, QDir::Dirs);
    while (each.hasNext()) {
        const QString process = each.next();
        if (has_socket(process, target)) {
            QFile name(process + QStringLiteral("/comm"));
            const QString told = name.open(QIODevice::ReadOnly)
                                     ? QString::fromUtf8(name.readAll()).simplified()
                                     : QStringLiteral("?");
            return QStringLiteral("process %1 (%2)").arg(QFileInfo(process).fileName(), told);
        }
    }
    return {};
}

}  // namespace

QString port_holder(quint16 _port) {
    const auto sockets = socket_owner_t::sockets_of(_port);
    if (sockets.isEmpty()) {
        return {};
    }
    const QString process = process_of(sockets.constFirst().inode);
    return QStringLiteral("%1 of user %2")
        .arg(process.isEmpty() ? QStringLiteral("a process") : process,
             QString::number(sockets.constFirst().user));
}

}  // namespace torlan
