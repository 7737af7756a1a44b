#include "endpoint/incoming_t.h"

#include "endpoint/json_payload.h"

namespace comunication {

incoming_t incoming_t::judge(const QString& _topic, const QByteArray& _payload, bool _retain,
                             bool _enabled) {
    const api_topic_t levels = api_topic_t::parse(_topic);
    const bool empty_is_deletion = !levels.is_request() || _retain;
    if (!levels.is_valid() || (_payload.isEmpty() && empty_is_deletion)) {
        return {};
    }
    if (levels.is_request() && _retain) {
        return {action_t::clear, levels, {}};
    }
    if (!_enabled) {
        return {};
    }
    if (levels.is_request()) {
        return {action_t::take, levels, {}};
    }
    return {action_t::pass_on, levels, json_payload::decode(_payload).value_or(QJsonObject())};
}

}  // namespace comunication
