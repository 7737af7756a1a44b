#pragma once

#include "gate/refusal_t.h"
#include "gate/request_head_t.h"

namespace torlan {

/// Decides by a request's head whether a file may be asked for; pure rules.
struct page_guard_t {
    static refusal_t judge(const request_head_t& _head);
};

}  // namespace torlan
