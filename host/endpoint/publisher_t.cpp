#include "endpoint/publisher_t.h"

#include <utility>

#include "base/json_text.h"
#include "comunication/api_topic_t.h"
#include "comunication/api_topics.h"
#include "endpoint/request_rules.h"
#include "logs/log_line.h"

namespace comunication {

namespace {

constexpr const char* source = "host/endpoint/publisher_t";

/// Of an MQTT 5 publish packet besides topic and payload: header, lengths, identifier, no property.
constexpr std::size_t packet_overhead = 16;

}  // namespace

publisher_t::publisher_t(message_sender_t& _sender, endpoint_counters_t& _counts,
                         std::size_t _packet_bytes)
    : sender(_sender), counts(_counts), packet_bytes(_packet_bytes) {}

QJsonValue publisher_t::publish(const QString& _topic, const QJsonValue& _payload,
                                utility::qos_t _qos, bool _retain) {
    // Nothing to say would delete what is retained.
    if (_payload.isUndefined() || (_retain && !is_retainable(_topic))) {
        ++counts.refused;
        return QJsonValue::Undefined;
    }
    // An answer is nobody else's.
    outgoing_t message{_topic.toUtf8(), _retain ? text_of(_payload) : base::json_to_text(_payload),
                       _qos, _retain};
    if (is_too_large(message)) {
        return replace_too_large(message, _payload);
    }
    sender.send(std::move(message));
    return _payload;
}

QByteArray publisher_t::text_of(const QJsonValue& _payload) {
    if (!_payload.isObject()) {
        return base::json_to_text(_payload);
    }
    const QJsonObject payload = _payload.toObject();
    if (last_text.isEmpty() || payload != last_payload) {
        last_payload = payload;
        last_text = base::json_to_text(payload);
    }
    return last_text;
}

void publisher_t::refuse(const QString& _request_topic, const QJsonObject& _answer) {
    sender.send_refusal(api_topic_t::parse(_request_topic).user,
                        {api_topics::answer(_request_topic).toUtf8(), base::json_to_text(_answer),
                         utility::qos_t::exactly_once, false});
}

bool publisher_t::is_retainable(const QString& _topic) {
    const bool may = api_topics::may_be_retained(_topic);
    if (!may && !std::exchange(told_topic, true)) {
        ::utility::log_line(
            QStringLiteral("States under other names than identifiers are refused, first: %1")
                .arg(_topic),
            2, "is_retainable", source, __LINE__);
    }
    return may;
}

bool publisher_t::is_too_large(const outgoing_t& _message) const {
    const auto size = std::size_t(_message.topic.size() + _message.payload.size());
    return packet_bytes != 0 && size + packet_overhead > packet_bytes;
}

QJsonValue publisher_t::replace_too_large(const outgoing_t& _message, const QJsonValue& _payload) {
    ++counts.too_large;
    if (!std::exchange(told_size, true)) {
        ::utility::log_line(
            QStringLiteral("Messages above the broker's limit are not sent, first: %1")
                .arg(QString::fromUtf8(_message.topic)),
            2, "replace_too_large", source, __LINE__);
    }
    if (_message.retain) {
        return QJsonValue::Undefined;
    }
    const QString uuid = _payload.toObject().value(QLatin1String("uuid")).toString();
    const QJsonObject answer = request_rules::too_large_an_answer(
        std::size_t(uuid.size()) < packet_bytes / 8 ? uuid : QString());
    sender.send({_message.topic, base::json_to_text(answer), _message.qos, false});
    return answer;
}

}  // namespace comunication
