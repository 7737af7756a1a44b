#pragma once

#include <QString>

namespace torlan {

/// The console: where it is, and where its page finds the broker; on 127.0.0.1.
struct web_t {
    QString pages;  ///< folder of the page's files
    quint16 port = 0;
    quint16 ws_port = 0;

    /// With the address's number: a page at "localhost" would be another origin.
    QString address() const { return QStringLiteral("http://127.0.0.1:%1/").arg(port); }
};

}  // namespace torlan
