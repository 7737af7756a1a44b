#pragma once

#include <QString>

namespace torlan {

/// What every program does first, before the application object: standard streams are there, texts
/// are UTF-8, and the application gets its name and the version.
void begin_program(const QString& _name);

}  // namespace torlan
