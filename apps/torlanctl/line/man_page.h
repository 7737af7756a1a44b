#pragma once

#include "line/command_t.h"

namespace torlan {

/// The manual page, in the language of man. Pure.
QString man_page(const commands_t& _commands, const QString& _version);

}  // namespace torlan
