#pragma once

#include <QString>

#include "logs/log_settings_t.h"

namespace torlan {

/// How to log, by the process-wide options. A folder that they do not name is @p _folder.
utility::logs::log_settings_t chosen_log(const QString& _folder);

}  // namespace torlan
