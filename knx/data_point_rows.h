#pragma once

#include <QList>

#include "knx/data_point_type_t.h"

/// The table of data point types; data_point_types.h puts it together.
namespace knx {

/// Bits, characters and whole numbers.
const QList<data_point_type_t>& whole_rows();

/// Numbers with a fraction.
const QList<data_point_type_t>& float_rows();

/// Times, texts, scenes, modes and colours.
const QList<data_point_type_t>& composed_rows();

}  // namespace knx
