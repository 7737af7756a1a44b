#pragma once

#include <QList>
#include <QString>

#include "knx/data_point_type_t.h"

namespace knx {

/// All of the table, sorted by main type and sub-type.
const QList<data_point_type_t>& data_point_types();

/// The row of "9.001" or "9"; null: the table has none. Lives as long as the program.
const data_point_type_t* find_data_point_type(const QString& _id);

/// Whether a text has the form of a type, "9.001" or "9", whether the table has it or not.
bool is_data_point_type_id(const QString& _id);

}  // namespace knx
