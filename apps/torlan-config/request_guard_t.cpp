#include "request_guard_t.h"

#include <algorithm>

#include "http/loopback.h"
#include "settings_path_t.h"

namespace {

/// "name", "name:port" or "[address]:port" with a name of this machine.
bool is_own_authority(const QByteArray& _authority) {
    const bool has_brackets = _authority.startsWith('[');
    const qsizetype end = has_brackets ? _authority.indexOf(']') : _authority.indexOf(':');
    const QByteArray port = end < 0 ? QByteArray() : _authority.mid(has_brackets ? end + 1 : end);
    const QByteArray name = has_brackets ? _authority.mid(1, end - 1)
                                         : _authority.left(end < 0 ? _authority.size() : end);
    const bool is_port =
        port.isEmpty() ||
        (port.startsWith(':') && port.size() > 1 && port.size() <= 6 &&
         std::all_of(port.begin() + 1, port.end(), [](char c) { return c >= '0' && c <= '9'; }));
    const bool is_address_6 = name.contains(':');
    return is_port && has_brackets == is_address_6 && is_loopback_host(QString::fromLatin1(name));
}

bool is_own_origin(const QByteArray& _origin) {
    for (const QByteArray& scheme : {QByteArray("http://"), QByteArray("https://")}) {
        if (_origin.startsWith(scheme)) {
            return is_own_authority(_origin.mid(scheme.size()));
        }
    }
    return false;
}

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
        return {405, QStringLiteral("Only GET and PUT are served")};
    }
    if (const refusal_t refusal = settings_path_t::parse(_head.path()).refusal) {
        return refusal;
    }
    return judge_body(_head);
}
