#include "store/left_logs_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>

namespace database::store {

namespace {

/// Every connection of SQLite holds a shared lock on this byte of the index.
constexpr off_t in_use_byte = 128;

bool is_used(const QString& _index) {
    const int descriptor = ::open(QFile::encodeName(_index).constData(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = in_use_byte;
    lock.l_len = 1;
    const bool used = ::fcntl(descriptor, F_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
    ::close(descriptor);
    return used;
}

}  // namespace

left_logs_t::left_logs_t(const QString& _database)
    : log(_database + QStringLiteral("-wal")),
      index(_database + QStringLiteral("-shm")),
      log_file(file_identity_t::of(log)),
      index_file(file_identity_t::of(index)) {}

void left_logs_t::remove() const {
    if (index_file && file_identity_t::of(index) == index_file && !is_used(index)) {
        QFile::remove(index);
        if (log_file && file_identity_t::of(log) == log_file) {
            QFile::remove(log);
        }
    }
}

}  // namespace database::store
