#pragma once

#include <QByteArray>
#include <QString>

namespace torlan {

/// Why a request is not served; status 0: it is.
struct refusal_t {
    int status = 0;        ///< an HTTP status of 400 or above
    QString message;       ///< one sentence for the client
    QByteArray allowed{};  ///< of a 405: the methods that are served

    explicit operator bool() const { return status != 0; }
};

/// The body of every failed request: {"error": status, "message": text}.
QByteArray error_packet(const refusal_t& _refusal);

/// The whole answer, head and body, of a server that closes the connection behind it.
QByteArray refusal_answer(const refusal_t& _refusal);

}  // namespace torlan
