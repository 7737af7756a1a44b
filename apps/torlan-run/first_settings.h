#pragma once

#include <QByteArray>
#include <QString>

namespace torlan {

/// The settings document of a new installation, as text.
/// @param _data its folder
/// @param _drivers folder of the drivers
QByteArray first_settings(const QString& _data, const QString& _drivers);

}  // namespace torlan
