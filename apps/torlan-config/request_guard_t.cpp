#include "request_guard_t.h"

#include <algorithm>

#include "http/loopback.h"
#include "settings_path_t.h"

namespace torlan {

namespace {

bool is_port(const QByteArray& _text) {
    return !_text.isEmpty() && _text.size() <= 5 &&
           std::all_of(_text.begin(), _text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// A name of this machine as headers write it: an address of IPv6 is in brackets.
bool is_own_name(const QByteArray& _name) {
    if (_name.startsWith('[')) {
        return _name == "[::1]";
    }
    return !_name.contains(':') && is_loopback_host(QString::fromLatin1(_name));
}

/// "name" or "name:port" with a name of this machine.
bool is_own_authority(const QByteArray& _authority) {
    const qsizetype colon = _authority.indexOf(':', _authority.indexOf(']') + 1);
    if (colon < 0) {
        return is_own_name(_authority);
    }
    return is_own_name(_authority.left(colon)) && is_port(_authority.mid(colon + 1));
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

}  // namespace torlan
