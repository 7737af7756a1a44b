#include "broker/plugin_file_t.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <utility>

namespace broker {

using base::result_t;

namespace {

/// Something in this library.
const char anchor = 0;

/// Nobody but root and this process's user can change what is in it.
bool is_trusted(const struct stat& _file) {
    return S_ISREG(_file.st_mode) && (_file.st_uid == 0 || _file.st_uid == ::geteuid()) &&
           (_file.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

}  // namespace

QString plugin_file_t::usual_path() {
    Dl_info info{};
    const bool known = ::dladdr(&anchor, &info) != 0;
    const QString own = known ? QFile::decodeName(info.dli_fname) : QString();
    return QFileInfo(own).canonicalPath() + QStringLiteral("/libtorlan_broker_plugin.so");
}

result_t plugin_file_t::open(const QString& _path) {
    close();
    held = ::open(QFile::encodeName(_path).constData(), O_RDONLY | O_CLOEXEC);
    struct stat file {};
    if (held < 0 || ::fstat(held, &file) != 0) {
        return result_t::failed(QStringLiteral("The broker's plugin %1 cannot be read: %2.")
                                    .arg(_path, QString::fromLocal8Bit(std::strerror(errno))));
    }
    if (!is_trusted(file)) {
        close();
        return result_t::failed(
            QStringLiteral("The broker's plugin %1 can be written by others.").arg(_path));
    }
    return {};
}

QByteArray plugin_file_t::path_in_child() const {
    return "/proc/self/fd/" + QByteArray::number(held);
}

void plugin_file_t::close() {
    if (held >= 0) {
        ::close(std::exchange(held, -1));
    }
}

}  // namespace broker
