#pragma once

#include <QStringList>

#include "store/connection_t.h"

namespace database::store {

/// Version of the layout in schema.sql; to be raised with every change of it.
inline constexpr int schema_version = 1;

/// Marks a file as an installation database (PRAGMA application_id).
inline constexpr int application_id = 0x746f7264;

/// The tables of the layout, each after those that it refers to.
QStringList table_names();

/// Makes the tables of an empty database and marks it. Inside a writing transaction.
::base::result_t create_tables(connection_t& _connection);

}  // namespace database::store
