#include "endpoint/exchanges_t.h"

#include <algorithm>
#include <utility>

#include "comunication/api_topics.h"

namespace comunication {

namespace {

/// Drivers echo texts only, and none that is empty.
QString uuid_of(const QJsonObject& _payload) {
    return _payload.value(QLatin1String("uuid")).toString();
}

}  // namespace

void exchanges_t::pass(const request_t& _request, const QJsonObject& _payload) {
    exchange_t exchange{_request.levels, _request.topic, _payload};
    exchange.bytes = qint64(_request.bytes());
    passed.push_back({std::move(exchange), api_topics::answer(_request.topic), uuid_of(_payload)});
}

std::optional<exchange_t> exchanges_t::answer(const QString& _topic, const QJsonValue& _payload) {
    const QJsonObject payload = _payload.toObject();
    const QJsonValue uuid = uuid_of(payload);
    // Answers come in the order of the requests: the first that is open is nearly always the one.
    const auto found = std::find_if(passed.begin(), passed.end(), [&](const open_t& _open) {
        return !_open.exchange.is_answered && _open.answer_topic == _topic && _open.uuid == uuid;
    });
    if (found == passed.end()) {
        return {};
    }
    exchange_t whole = std::exchange(found->exchange, exchange_t());
    found->exchange.is_answered = whole.is_answered = true;
    whole.answer = payload;
    return whole;
}

std::optional<exchange_t> exchanges_t::done() {
    if (passed.empty()) {
        return {};
    }
    const open_t oldest = std::move(passed.front());
    passed.pop_front();
    return oldest.exchange.is_answered ? std::nullopt : std::optional(oldest.exchange);
}

}  // namespace comunication
