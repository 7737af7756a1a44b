#pragma once

#include <QString>

namespace torlan {

/// Where drivers are: @p _given unless it is empty, else beside the program. Not where the settings
/// say: they can be changed over the network, and what lies there runs as this server.
QString driver_folder(const QString& _given);

}  // namespace torlan
