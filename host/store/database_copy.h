#pragma once

#include "store/connection_t.h"

namespace database::store {

/// Copies a database of layout @p _layout as it is at this moment, to be called while nobody can
/// write: "installation.layout-1.db" beside "installation.db", on the medium when this returns,
/// readable by its owner only. A copy that is there already stays; when it holds the same, no other
/// is made.
/// @return the copy's path
::base::result_of_t<QString> copy_database(const QString& _path, int _layout, int _busy_ms);

}  // namespace database::store
