#pragma once

#include <QJsonArray>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// Many changes a second: how late the states come, whether the last ones are right for every user,
/// and how much memory it takes.
base::result_t measure_storms(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
