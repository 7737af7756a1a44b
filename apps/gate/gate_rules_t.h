#pragma once

#include <QtGlobal>

#include "gate/refusal_t.h"
#include "gate/request_head_t.h"

namespace torlan {

/// What a program takes of a request before it looks at it.
struct gate_rules_t {
    static constexpr int default_limit_ms = 10000;

    qint64 max_head_bytes = 16 * 1024;
    qint64 max_body_bytes = 0;
    int limit_ms = default_limit_ms;  ///< for one request and its answer
    /// Decides by the head whether it is served; what it lets through has a body_bytes() of at
    /// most max_body_bytes.
    refusal_t (*judge)(const request_head_t& _head) = nullptr;
};

}  // namespace torlan
