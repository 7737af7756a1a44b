#pragma once

#include "gate/refusal_t.h"
#include "gate/request_head_t.h"

namespace torlan {

/// Decides by a request's head whether it is served; pure rules.
///
/// Any web page that the user's browser shows can send requests to this machine. A page on another
/// site shows itself by its Origin; one that made its own name resolve to loopback by its Host.
struct request_guard_t {
    static constexpr qint64 max_head_bytes = 16 * 1024;
    static constexpr qint64 max_body_bytes = 1024 * 1024;

    static refusal_t judge(const request_head_t& _head);
};

}  // namespace torlan
