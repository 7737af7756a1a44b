#pragma once

#include <QByteArray>

namespace torlan {

/// The headers of every answer, each with its line end: what the page may load and talk to, and
/// that no other page may show or read it. Pure.
///
/// Nothing but the page's own files, no script or style within its text, no connection but the
/// broker's on this machine, under each of the names that this machine has for itself.
QByteArray page_headers(quint16 _ws_port);

}  // namespace torlan
