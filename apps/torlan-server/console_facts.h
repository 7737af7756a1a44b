#pragma once

#include "base/result_t.h"
#include "database/database_t.h"

namespace torlan {

/// Writes the file @p _path, of which the console's server tells the page: what its user may know
/// of the installation and cannot ask the broker for, {"connection": topic, "port": the
/// broker's}. Whole, or as it was.
base::result_t write_console_facts(const QString& _path, quint16 _port,
                                   const database::database_t& _database);

}  // namespace torlan
