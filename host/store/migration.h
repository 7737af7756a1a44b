#pragma once

#include <QStringList>

#include "store/connection_t.h"

namespace database::store {

/// Brings a database of an older layout to the one of schema.sql, after a copy of it was made. To
/// be called inside a writing transaction, with foreign keys off: failed or killed half-way, the
/// database is as it was.
/// @param _layout what it has, from 1 on
/// @param _busy_ms how long the copy waits for other programs, in milliseconds
/// @return what people should know, one sentence for each thing: where the copy is, which rows were
///         set aside
::base::result_of_t<QStringList> migrate(connection_t& _connection, int _layout, int _busy_ms);

/// The tables that a database of layout @p _layout has.
QStringList tables_of_layout(int _layout);

}  // namespace database::store
