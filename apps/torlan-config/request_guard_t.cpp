#include "request_guard_t.h"

#include <algorithm>

#include "gate/own_authority.h"
#include "settings_path_t.h"

namespace torlan {

namespace {

refusal_t judge_source(const request_head_t& _head) {
    if (_head.hosts.size() != 1 || !is_own_authority(_head.hosts.first())) {
        return {403, QStringLiteral("The Host header does not name this machine")};
    }
    if (!std::all_of(_head.origins.begin(), _head.origins.end(), is_own_origin)) {
        return {403, QStringLiteral("Pages of other sites may not use the settings")};
    }
    return {};
}

refusal_t judge_body(const request_head_t& _head) {
    if (_head.is_coded || (_head.method == "PUT" && _head.lengths.isEmpty())) {
        return {411, QStringLiteral("The body needs a Content-Length")};
    }
    const std::optional<qint64> bytes = _head.body_bytes();
    if (!bytes) {
        return {400, QStringLiteral("The Content-Length is malformed")};
    }
    if (*bytes > request_guard_t::max_body_bytes) {
        return {413, QStringLiteral("The body is larger than 1 MiB")};
    }
    return {};
}

}  // namespace

refusal_t request_guard_t::judge(const request_head_t& _head) {
    if (const refusal_t refusal = judge_source(_head)) {
        return refusal;
    }
    if (_head.method != "GET" && _head.method != "PUT") {
        return {405, QStringLiteral("Only GET and PUT are served"), "GET, PUT"};
    }
    if (const refusal_t refusal = settings_path_t::parse(_head.path()).refusal) {
        return refusal;
    }
    return judge_body(_head);
}

}  // namespace torlan
