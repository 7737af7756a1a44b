#include "bench/measure/machine_facts.h"

#include <mosquitto.h>

#include <QFile>
#include <QProcess>
#include <QSysInfo>
#include <thread>

#include "bench/measure/json_array.h"

namespace bench {

namespace {

QByteArray read(const char* _path) {
    QFile file(QString::fromLatin1(_path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The text behind @p _key and a colon in the first line that begins so.
QString entry(const QByteArray& _text, const QByteArray& _key) {
    const QList<QByteArray> lines = _text.split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(_key)) {
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1)).simplified();
        }
    }
    return QStringLiteral("unknown");
}

QString broker_version() {
    QProcess broker;
    broker.start(QStringLiteral("mosquitto"), {QStringLiteral("-h")});
    broker.waitForFinished(5'000);
    return QString::fromUtf8(broker.readAllStandardOutput().split('\n').value(0));
}

QString library_version() {
    int major = 0;
    int minor = 0;
    int revision = 0;
    mosquitto_lib_version(&major, &minor, &revision);
    return QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(revision);
}

}  // namespace

QJsonObject machine_facts() {
    const double memory = entry(read("/proc/meminfo"), "MemTotal").section(u' ', 0, 0).toDouble();
    return {
        {"processor", entry(read("/proc/cpuinfo"), "model name")},
        {"cores", int(std::thread::hardware_concurrency())},
        {"memory_gib", rounded(memory / 1024 / 1024)},
        {"system", QSysInfo::prettyProductName()},
        {"kernel", QSysInfo::kernelVersion()},
        {"qt", QString::fromLatin1(qVersion())},
        {"compiler", QStringLiteral("g++ " __VERSION__)},
        {"broker", broker_version()},
        {"libmosquitto", library_version()},
        {"load_before", QString::fromLatin1(read("/proc/loadavg").split(' ').value(0)).toDouble()}};
}

}  // namespace bench
