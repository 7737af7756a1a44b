#pragma once

#include "base/result_t.h"

namespace torlan {

/// Why a start failed that somebody has broken off.
inline base::result_t start_broken_off() {
    return base::result_t::failed(QStringLiteral("The start was broken off."));
}

}  // namespace torlan
