#pragma once

#include <QString>

#include "logs/log_settings_t.h"

namespace torlan {

/// How to log, by the process-wide options, into @p _folder. Not where the settings say: they can
/// be changed over the network.
utility::logs::log_settings_t chosen_log(const QString& _folder);

}  // namespace torlan
