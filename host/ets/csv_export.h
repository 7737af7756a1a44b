#pragma once

#include <QByteArray>

#include "base/result_t.h"
#include "ets/project_t.h"

namespace ets {

/// Reads the table of group addresses that ETS exports. Does not name the file in a failure's
/// sentence.
base::result_of_t<project_t> read_csv_export(const QByteArray& _bytes);

}  // namespace ets
