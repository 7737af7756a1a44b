#include "store/file_identity_t.h"

#include <sys/stat.h>

#include <QFile>

namespace database::store {

std::optional<file_identity_t> file_identity_t::of(const QString& _path) {
    struct stat status = {};
    if (::stat(QFile::encodeName(_path).constData(), &status) != 0) {
        return std::nullopt;
    }
    return file_identity_t{status.st_dev, status.st_ino};
}

}  // namespace database::store
