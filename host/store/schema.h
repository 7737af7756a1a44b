#pragma once

#include <QStringList>

#include "store/connection_t.h"

namespace database::store {

/// Version of the layout in schema.sql; to be raised with every change of it, and migration.cpp
/// gets a step.
inline constexpr int schema_version = 4;

/// Marks a file as an installation database (PRAGMA application_id).
inline constexpr int application_id = 0x746f7264;

/// The tables of the layout, each after those that it refers to.
QStringList table_names();

/// Makes the tables alone. What makes a layout is to be called inside a writing transaction.
::base::result_t create_tables(connection_t& _connection);
/// Makes what stands around the tables: indices and triggers.
::base::result_t create_triggers(connection_t& _connection);
/// Says whose file it is and which layout it has.
::base::result_t mark_layout(connection_t& _connection);

}  // namespace database::store
