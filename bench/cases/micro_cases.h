#pragma once

#include <QJsonArray>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// The plugin's inner steps, by Google Benchmark: the median of the rounds of each.
base::result_t measure_micro(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
