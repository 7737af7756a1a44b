#pragma once

#include <QHash>
#include <mutex>

#include "kit/http_server_t.h"

/// A configuration server that answers every request of a method with the same bytes, which the
/// test may change.
class config_server_t {
 public:
    using request_t = kit::http_server_t::request_t;

    quint16 port() const { return server.port(); }
    QList<request_t> requests() const { return server.requests(); }

    void answer(const QByteArray& _method, const QByteArray& _status, const QByteArray& _body) {
        answer_raw(_method, kit::http_server_t::json(_body, _status).bytes);
    }
    /// Whatever bytes; nothing: the connection is closed without an answer.
    void answer_raw(const QByteArray& _method, const QByteArray& _bytes) {
        const std::lock_guard locker(mutex);
        answers[_method] = _bytes;
    }

 private:
    kit::http_server_t::answer_t of(const QByteArray& _method) const {
        const std::lock_guard locker(mutex);
        return {answers.value(_method)};
    }

    mutable std::mutex mutex;  ///< guards answers
    QHash<QByteArray, QByteArray> answers;
    kit::http_server_t server{[this](const request_t& _request) { return of(_request.method); }};
};
