#include "gate/own_authority.h"

#include <QString>
#include <algorithm>

#include "http/loopback.h"

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

}  // namespace

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

}  // namespace torlan
