#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QString>
#include <cerrno>

namespace base {

/// Puts on the medium what the file at @p _path holds or, for a folder, which names are in it: a
/// new or renamed file is there after a power cut only when its folder has been synced, too. False:
/// errno says why not.
inline bool sync_path(const QString& _path) {
    const int descriptor = ::open(QFile::encodeName(_path).constData(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        return false;
    }
    const bool synced = ::fsync(descriptor) == 0;
    const int error = errno;
    ::close(descriptor);
    errno = error;
    return synced;
}

}  // namespace base
