#pragma once

#include <QJsonArray>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// A start, from the driver's to the last retained packet, against raw publication of the same
/// packets; and what it takes in memory.
base::result_t measure_starts(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
