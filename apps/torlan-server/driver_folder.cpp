#include "driver_folder.h"

#include <QCoreApplication>
#include <QDir>

namespace torlan {

QString driver_folder(const QString& _given) {
    return _given.isEmpty() ? QDir::cleanPath(QCoreApplication::applicationDirPath() +
                                              QStringLiteral("/../lib/drivers"))
                            : _given;
}

}  // namespace torlan
