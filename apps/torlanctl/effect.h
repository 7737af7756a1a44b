#pragma once

#include <QString>

#include "base/result_t.h"

namespace torlan {

/// Waits, 5 s at most, until the server that runs on a data folder and its broker follow what is
/// stored there; ok at once when no server runs. A failure is one sentence that says why they do
/// not yet; they go on trying.
base::result_t await_effect(const QString& _data);

}  // namespace torlan
