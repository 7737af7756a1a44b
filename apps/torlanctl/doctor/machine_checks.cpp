#include <sys/timex.h>
#include <time.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QStorageInfo>

#include "doctor/checks.h"
#include "doctor/health_rules.h"

namespace torlan {

namespace {

finding_t disk_finding(const QString& _folder) {
    const QStorageInfo storage(_folder);
    return storage.isValid()
               ? health_rules::disk(_folder, storage.bytesAvailable(), storage.bytesTotal(),
                                    storage.isReadOnly())
               : finding_t{QStringLiteral("disk"), health_t::unchecked,
                           QStringLiteral("nobody tells how full %1 is").arg(_folder)};
}

/// How long a process runs, by the machine's own count; 0: nobody knows.
std::chrono::seconds age_of(qint64 _process) {
    enum { start_behind_name = 19 };  // its 22nd word
    QFile file(QStringLiteral("/proc/%1/stat").arg(_process));
    const QByteArray text = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const QList<QByteArray> words = text.mid(text.lastIndexOf(')') + 2).split(' ');
    timespec now{};
    if (words.size() <= start_behind_name || ::clock_gettime(CLOCK_BOOTTIME, &now) != 0) {
        return {};
    }
    const qint64 ticks = words[start_behind_name].toLongLong();
    return std::chrono::seconds(now.tv_sec - ticks / ::sysconf(_SC_CLK_TCK));
}

bool is_synchronised() {
    timex state{};  // asks, sets nothing
    return ::adjtimex(&state) != TIME_ERROR;
}

health_rules::clock_t clock_of(const QJsonObject& _status) {
    health_rules::clock_t clock{QDateTime::currentDateTimeUtc(), is_synchronised()};
    const QJsonValue server = _status.value(QLatin1String("server"));
    const QDateTime since =
        QDateTime::fromString(server[QLatin1String("since")].toString(), Qt::ISODate);
    const std::chrono::seconds age = age_of(server[QLatin1String("process")].toInteger());
    if (since.isValid() && age.count() > 0) {
        clock.by_clock = std::chrono::seconds(since.secsTo(clock.now));
        clock.by_machine = age;
    }
    return clock;
}

/// Found as the server finds it: in the path or in the system's folders.
finding_t broker_finding() {
    constexpr int patience_ms = 3000;
    const QString name = QStringLiteral("mosquitto");
    QString program = QStandardPaths::findExecutable(name);
    if (program.isEmpty()) {
        program = QStandardPaths::findExecutable(
            name, {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
    }
    if (program.isEmpty()) {
        return health_rules::broker_version({});
    }
    QProcess process;
    process.start(program, {QStringLiteral("-h")});
    process.waitForFinished(patience_ms);
    return health_rules::broker_version(process.readAllStandardOutput());
}

}  // namespace

findings_t machine_findings(const QString& _data, const QJsonObject& _status) {
    const QString data = QFileInfo(_data).absoluteFilePath();
    findings_t found{disk_finding(data)};
    const QString log = _status.value(QLatin1String("paths"))[QLatin1String("log")].toString();
    const QString logs = QFileInfo(log).absolutePath();
    if (!log.isEmpty() && QStorageInfo(logs) != QStorageInfo(data)) {
        found.append(disk_finding(logs));
    }
    return found + health_rules::clock(clock_of(_status)) + findings_t{broker_finding()};
}

}  // namespace torlan
