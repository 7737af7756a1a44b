#include "page_guard_t.h"

#include <algorithm>

#include "gate/own_authority.h"

namespace torlan {

refusal_t page_guard_t::judge(const request_head_t& _head) {
    // A page whose own name was made to resolve to loopback would be of one origin with ours.
    if (_head.hosts.size() != 1 || !is_own_authority(_head.hosts.first())) {
        return {403, QStringLiteral("The Host header does not name this machine")};
    }
    if (!std::all_of(_head.origins.begin(), _head.origins.end(), is_own_origin)) {
        return {403, QStringLiteral("Pages of other sites may not read this one")};
    }
    if (_head.method != "GET" && _head.method != "HEAD") {
        return {405, QStringLiteral("Only GET and HEAD are served"), "GET, HEAD"};
    }
    if (_head.is_coded || _head.body_bytes() != 0) {
        return {400, QStringLiteral("A request for a file has no body")};
    }
    return {};
}

}  // namespace torlan
