#pragma once

#include <QJsonArray>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// Change to push: one item changes, and all who may read have the new retained packet; against a
/// raw pair that publishes the same.
base::result_t measure_pushes(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
