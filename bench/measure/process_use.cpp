#include "bench/measure/process_use.h"

#include <ctime>

#include <QByteArray>
#include <QFile>

namespace bench {

namespace {

qint64 status_bytes(qint64 _process, const QByteArray& _key) {
    QFile status(QStringLiteral("/proc/%1/status").arg(_process));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QByteArray text = status.readAll();
    const qsizetype at = text.indexOf('\n' + _key + ':');
    const QByteArray line = text.mid(at + _key.size() + 2);
    return at < 0 ? -1 : line.left(line.indexOf("kB")).trimmed().toLongLong() * 1024;
}

}  // namespace

double processor_us(qint64 _process) {
    clockid_t clock = 0;
    timespec time{};
    if (::clock_getcpuclockid(pid_t(_process), &clock) != 0 || ::clock_gettime(clock, &time) != 0) {
        return -1;
    }
    return double(time.tv_sec) * 1e6 + double(time.tv_nsec) / 1e3;
}

qint64 resident_bytes(qint64 _process) {
    return status_bytes(_process, "VmRSS");
}

qint64 peak_bytes(qint64 _process) {
    return status_bytes(_process, "VmHWM");
}

}  // namespace bench
