#include "broker/plugin/host_link_t.h"

#include <algorithm>

#include "broker/plugin/control_message_t.h"

namespace broker::plugin {

namespace {
constexpr std::size_t most_lines = 16;
}  // namespace

void host_link_t::hear(const std::string& _client_id) {
    if (client == _client_id) {
        return;
    }
    client = _client_id;
    if (!under_way.empty()) {
        port->send(client, report_topic, under_way);
    }
}

void host_link_t::lose(const std::string& _client_id) {
    if (client == _client_id) {
        client.clear();
    }
}

void host_link_t::answer(const control_message_t& _message) {
    const std::string about = ' ' + std::to_string(_message.number);
    if (!_message.refused.empty()) {
        port->send(client, answer_topic, "refused" + about + ' ' + _message.refused + '\n');
        return;
    }
    std::string text = "done" + about + '\n';
    for (std::size_t i = 0; i < std::min(most_lines, _message.left_out.size()); ++i) {
        text += _message.left_out[i] + '\n';
    }
    port->send(client, answer_topic, text);
}

void host_link_t::report(const std::string& _lines) {
    under_way = "report " + std::to_string(++number) + '\n' + _lines;
    port->send(client, report_topic, under_way);
}

void host_link_t::seen(std::uint64_t _number) {
    if (_number == number) {
        under_way.clear();
    }
}

}  // namespace broker::plugin
