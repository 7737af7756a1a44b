#pragma once

#include <QJsonValue>
#include <QString>

/// The outcome of one HTTP request; a plain value.
class httpresponse_t {
 public:
    /// What getError() says when the server's status is not the reason. Below 100, so that they
    /// never meet an HTTP status.
    enum error_t : int {
        no_error = 0,
        not_sent = 1,       ///< no request was made: unusable address or path, or a fresh value
        not_connected = 2,  ///< nobody listens, or the host is unknown
        timed_out = 3,      ///< the whole exchange took longer than the client's time-out
        broken_answer = 4,  ///< closed early, short body, not HTTP
        too_large = 5,      ///< the answer exceeds the client's limit
        not_json = 6        ///< a successful status with a body that is not one JSON value
    };

    /// No request was made.
    httpresponse_t() = default;

    static httpresponse_t success(int _status, const QJsonValue& _data);
    /// @p _error is an error_t or the HTTP status that is the failure; @p _status is 0 when the
    /// server never said one.
    static httpresponse_t failure(int _error, int _status, const QString& _text);

    /// 0 when the server accepted the request and answered JSON; else one of error_t or the HTTP
    /// status: everything outside of 200 to 299, redirects included.
    int getError() const { return error; }

    /// One sentence on the failure, without the request's body; empty on success.
    const QString& getErrorText() const { return text; }

    /// The HTTP status, 0 when there was none.
    int getStatus() const { return status; }

    /// The answer's JSON value, scalars included; undefined after a failure and for an answer
    /// without content.
    QJsonValue getData() const { return data; }

 private:
    int error = not_sent;
    int status = 0;
    QString text;
    QJsonValue data = QJsonValue::Undefined;
};
