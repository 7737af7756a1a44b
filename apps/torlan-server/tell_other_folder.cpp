#include "tell_other_folder.h"

#include <QDir>

#include "logs/log_line.h"

namespace torlan {

namespace {
constexpr const char* source = "apps/torlan-server/tell_other_folder";
}

void tell_other_folder(const QString& _what, const QString& _used, const QString& _settings) {
    if (!_settings.isEmpty() && QDir::cleanPath(_settings) != QDir::cleanPath(_used)) {
        utility::log_line(
            QStringLiteral("%1 in %2, not in the settings' folder %3").arg(_what, _used, _settings),
            3, "tell_other_folder", source, __LINE__);
    }
}

}  // namespace torlan
