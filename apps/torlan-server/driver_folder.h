#pragma once

#include <QString>

namespace torlan {

/// Where drivers are: @p _given unless it is empty, else the process-wide options', else beside the
/// program.
QString driver_folder(const QString& _given);

}  // namespace torlan
