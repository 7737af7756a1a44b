#pragma once

#include <QByteArray>
#include <QList>
#include <optional>

namespace torlan {

/// Request line and headers of one HTTP/1 request, as far as this server judges them.
struct request_head_t {
    QByteArray method;
    QByteArray target;           ///< path and query as sent
    QList<QByteArray> hosts;     ///< values of every Host header
    QList<QByteArray> origins;   ///< values of every Origin header
    QList<QByteArray> lengths;   ///< values of every Content-Length header
    bool is_coded = false;       ///< it has a Transfer-Encoding header
    bool expects_go_on = false;  ///< the client waits for "100 Continue" before the body

    /// Reads @p _head, which ends with the last header's line end. Nothing when it is not
    /// HTTP/1.x with plain header lines: continued lines and odd names are not taken.
    static std::optional<request_head_t> parse(const QByteArray& _head);

    /// @p _head, as above, without its Expect headers.
    static QByteArray without_expectation(const QByteArray& _head);

    /// The target up to the first "?".
    QByteArray path() const;

    /// Bytes of the body, 0 when none is announced; nothing when the headers disagree or are not
    /// a number.
    std::optional<qint64> body_bytes() const;
};

}  // namespace torlan
