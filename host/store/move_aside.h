#pragma once

#include "base/result_t.h"

namespace database::store {

/// Gives a file that open_database() refuses, damaged or no installation database of this program,
/// another name beside it, with what belongs to it, so that a new one can be made. One that can be
/// opened stays, as does one that is in use.
/// @param _busy_ms how long to wait for another program, in milliseconds
/// @return where it is now; empty: it stays
::base::result_of_t<QString> move_unusable_aside(const QString& _path, int _busy_ms);

}  // namespace database::store
