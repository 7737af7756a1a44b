#include "ets/zip_entry_t.h"

#include <archive.h>

#include <QByteArrayView>

namespace ets {

zip_entry_t::zip_entry_t(archive* _archive, qint64 _most, qint64* _left)
    : source(_archive), most(_most), left(_left) {
    open(QIODevice::ReadOnly);
}

qint64 zip_entry_t::readData(char* _data, qint64 _size) {
    if (failed) {
        return -1;
    }
    const la_ssize_t count = ::archive_read_data(source, _data, static_cast<size_t>(_size));
    // A wrong check sum is a warning to libarchive, which hands out the bytes.
    if (count < 0) {
        const char* const words = ::archive_error_string(source);
        locked = words != nullptr && QByteArrayView(words).toByteArray().contains("assphrase");
        return fail(QStringLiteral("is damaged (%1)").arg(QString::fromUtf8(words)));
    }
    unpacked += count;
    *left -= count;
    if (unpacked > most || *left < 0) {
        return fail(QStringLiteral("is larger than any project"));
    }
    return count;
}

qint64 zip_entry_t::fail(const QString& _why) {
    failed = true;
    setErrorString(_why);
    return -1;
}

}  // namespace ets
