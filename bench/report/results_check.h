#pragma once

#include <QJsonObject>

#include "base/result_t.h"

namespace bench {

/// Whether a document may be made of these results: all sections, nine rounds at least of each
/// lane, no run that was only a proof that the tools work. Pure.
base::result_t check_results(const QJsonObject& _results);

}  // namespace bench
