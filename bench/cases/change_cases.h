#pragma once

#include <QJsonArray>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// What one change costs an installation of N elements, in processor time of the server: an item, a
/// bulk change, a revoked grant, a removed user.
base::result_t measure_changes(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
