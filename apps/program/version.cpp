#include "program/version.h"

#include <QCoreApplication>

namespace torlan {

QString version() {
    return QStringLiteral(TORLAN_VERSION);
}

QString version_text() {
    return QCoreApplication::applicationName() + QLatin1Char(' ') + version() + QLatin1Char('\n');
}

}  // namespace torlan
