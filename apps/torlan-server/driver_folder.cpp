#include "driver_folder.h"

#include <QCoreApplication>
#include <QDir>

#include "utility/torlan_option_t.h"

namespace torlan {

QString driver_folder(const QString& _given) {
    if (!_given.isEmpty()) {
        return _given;
    }
    const QString folder = utility::torlan_option_t::PluginFolder();
    return folder.isEmpty() ? QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                              QStringLiteral("/../lib/drivers"))
                            : folder;
}

}  // namespace torlan
