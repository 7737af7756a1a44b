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

#include "process/trusted_path.h"

namespace broker {

using base::result_t;

namespace {

/// Something in this library.
const char anchor = 0;

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
    struct stat file = {};
    if (held < 0 || ::fstat(held, &file) != 0) {
        return result_t::failed(QStringLiteral("The broker's plugin %1 cannot be read: %2.")
                                    .arg(_path, QString::fromLocal8Bit(std::strerror(errno))));
    }
    // The folders by their path, the file as it is held.
    result_t checked = process::check_only_ours(_path);
    if (checked.is_ok() && !(S_ISREG(file.st_mode) && process::is_only_ours(file))) {
        checked = result_t::failed(QStringLiteral("%1 is no plugin of the broker.").arg(_path));
    }
    if (!checked.is_ok()) {
        close();
    }
    return checked;
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
