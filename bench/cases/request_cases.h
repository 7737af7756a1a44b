#pragma once

#include <QJsonArray>
#include <functional>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// Request to answer: read one, write one, read all; each against raw pairs.
base::result_t measure_requests(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
