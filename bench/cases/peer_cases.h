#pragma once

#include <QJsonArray>

#include "base/result_t.h"
#include "bench/cases/run_plan_t.h"

namespace bench {

/// Read one element, the server against the Node-RED flow; nothing when the plan names no peer.
base::result_t measure_peer(const run_plan_t& _plan, QJsonArray* _results);

}  // namespace bench
