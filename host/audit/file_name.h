#pragma once

#include <QString>

namespace audit {

/// Of the server's file, in the folder of the log.
inline constexpr QLatin1String server_file("audit");
/// Of the configuration server's, beside the settings.
inline constexpr QLatin1String settings_file("settings-audit");

/// "audit.log" is the current file, "audit.1.log" the one before it.
inline QString file_name(const QString& _name, int _age) {
    return _age == 0 ? _name + QStringLiteral(".log")
                     : QStringLiteral("%1.%2.log").arg(_name).arg(_age);
}

}  // namespace audit
