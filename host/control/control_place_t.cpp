#include "control/control_place_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <cerrno>
#include <cstring>

#include "control/protocol.h"

namespace control {

namespace {

const QByteArray& name() {
    static const QByteArray encoded = QFile::encodeName(socket_name());
    return encoded;
}

}  // namespace

control_place_t::control_place_t(const QString& _folder)
    : descriptor(::open(QFile::encodeName(_folder).constData(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    struct stat status = {};
    if (descriptor >= 0 && ::fstat(descriptor, &status) == 0) {
        folder_owner = status.st_uid;
    }
}

control_place_t::~control_place_t() {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

sockaddr_un control_place_t::address() const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // A path below the folder may be longer than an address takes; this one never is.
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(descriptor) + '/' + name();
    std::memcpy(address.sun_path, path.constData(), std::size_t(path.size()));
    return address;
}

bool control_place_t::remove() const {
    return ::unlinkat(descriptor, name().constData(), 0) == 0 || errno == ENOENT;
}

void control_place_t::give_to_owner() const {
    if (folder_owner && *folder_owner != ::geteuid()) {
        // Who may not give it away keeps it: root comes in all the same.
        static_cast<void>(::fchownat(descriptor, name().constData(), *folder_owner, gid_t(-1),
                                     AT_SYMLINK_NOFOLLOW) == 0);
    }
}

}  // namespace control
