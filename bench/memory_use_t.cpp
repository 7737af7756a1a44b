#include "memory_use_t.h"

#include <malloc.h>
#include <unistd.h>

#include <QByteArray>
#include <QFile>

namespace {

qint64 resident_pages() {
    QFile file(QStringLiteral("/proc/self/statm"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() : 0;
}

}  // namespace

memory_use_t memory_use_t::now() {
    // Free pages that malloc keeps for later would count as memory of the driver.
    malloc_trim(0);
    const struct mallinfo2 info = mallinfo2();
    return {qint64(info.uordblks + info.hblkhd), resident_pages() * sysconf(_SC_PAGESIZE)};
}
