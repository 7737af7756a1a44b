#pragma once

#include <QString>

namespace torlan {

/// The version of all programs, "1.2.3": what CMakeLists.txt gives the project.
QString version();

/// What --version shows: the program's name and the version, a line.
QString version_text();

}  // namespace torlan
