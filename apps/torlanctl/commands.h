#pragma once

#include <QList>

#include "command_t.h"

namespace torlan {

/// Every command, in the order in which the help lists them.
const QList<command_t>& commands();

}  // namespace torlan
