#pragma once

#include <QByteArray>

#include "http/httpresponse_t.h"

/// One HTTP request and its answer, as bytes; the only place that knows the HTTP library.
struct http_exchange_t {
    /// What came back. error is one of httpresponse_t::error_t, status 0 when there was none.
    struct answer_t {
        int error = httpresponse_t::no_error;
        int status = 0;
        QByteArray body;
        QString text;  ///< the reason of an error
    };

    QByteArray method;   ///< "GET" or "PUT"
    QByteArray address;  ///< absolute, percent-encoded
    QByteArray body;     ///< sent with PUT
    int timeout_ms = 0;  ///< of the whole exchange
    bool use_proxy = false;
    qint64 max_bytes = 0;  ///< of the answer's head and of its body, each

    /// Blocks until the answer is whole, refused or late. Any thread.
    answer_t run() const;
};
