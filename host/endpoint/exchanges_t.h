#pragma once

#include <QJsonValue>
#include <deque>
#include <optional>

#include "endpoint/exchange_t.h"
#include "endpoint/request_t.h"

namespace comunication {

/// Finds the answer of each request that drivers got: it has the answer's topic and the same uuid,
/// and comes before the request counts as worked off. No more are held than are passed at a time.
/// Not thread-safe.
class exchanges_t {
 public:
    void pass(const request_t& _request, const QJsonObject& _payload);

    /// The exchange that a message, not retained, completes; nothing: it answers none.
    std::optional<exchange_t> answer(const QString& _topic, const QJsonValue& _payload);

    /// The oldest request is worked off. Nothing: it was answered; else it never will be.
    std::optional<exchange_t> done();

 private:
    struct open_t {
        exchange_t exchange;
        QString answer_topic;
        QJsonValue uuid;
    };

    std::deque<open_t> passed;  ///< the oldest first
};

}  // namespace comunication
