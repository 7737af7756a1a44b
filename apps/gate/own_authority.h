#pragma once

#include <QByteArray>

namespace torlan {

/// "name" or "name:port", as a Host header has it, with a name of this machine. A page that made
/// its own name resolve to loopback shows itself by another one.
bool is_own_authority(const QByteArray& _authority);

/// The same behind "http://" or "https://", as an Origin header has it.
bool is_own_origin(const QByteArray& _origin);

}  // namespace torlan
