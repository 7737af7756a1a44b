#pragma once

#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Reads a password, the first line of standard input. On a terminal it asks and switches the echo
/// off for as long as it reads, also when it is interrupted. A failure's sentence is without it.
base::result_of_t<QString> read_password();

}  // namespace torlan
