#pragma once

#include "store/connection_t.h"

namespace database::store {

/// Whether an existing file is an installation database that this program can open. The file stays
/// as it is, unless a program was killed while it wrote: then SQLite takes the half-written back.
/// @param _busy_ms how long to wait for another program, in milliseconds
/// @param _in_use if given: whether it failed because another program has the file
::base::result_t check_database(const QString& _path, int _busy_ms, bool* _in_use = nullptr);

/// The same of an open file, without a look at every page.
::base::result_t check_layout(connection_t& _connection);

/// Whether an installation was ever committed to the file: imported, or written by anybody. False
/// for a file that is not there and for one that was only begun.
::base::result_of_t<bool> holds_installation(const QString& _path, int _busy_ms);

}  // namespace database::store
