#pragma once

#include <QStringList>

#include "store/connection_t.h"

namespace database::store {

/// Opens the installation database @p _path for reading and writing. A file that is not there yet
/// is created, readable by its owner only, since it holds the users' password hashes. A file that
/// is damaged, foreign or of a newer layout is refused and left as it is; one of an older layout is
/// migrated, see migrate(). What is committed is on the medium.
/// @param _busy_ms how long a statement waits for another writer, in milliseconds
/// @return what people should know, one sentence for each thing; mostly nothing
::base::result_of_t<QStringList> open_database(connection_t& _connection, const QString& _path,
                                               int _busy_ms);

/// holds_installation(); false while a program opens the file: one that is new must not be looked
/// into before its journal mode is set.
::base::result_of_t<bool> is_ready_to_open(const QString& _path, int _busy_ms);

}  // namespace database::store
