#include "program/begin_program.h"

#include <QCoreApplication>

#include "program/standard_streams.h"
#include "program/use_utf8.h"
#include "program/version.h"

namespace torlan {

void begin_program(const QString& _name) {
    secure_standard_streams();
    use_utf8();
    QCoreApplication::setApplicationName(_name);
    QCoreApplication::setApplicationVersion(version());
}

}  // namespace torlan
