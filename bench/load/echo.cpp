#include "bench/load/echo.h"

#include <charconv>

namespace bench {

namespace {

constexpr std::string_view key = "\"uuid\":\"";
constexpr std::string_view value_key = "\"value\":\"";
constexpr std::string_view write_key = "\"execute\":\"";

/// The text of the uuid; empty: there is none.
std::string_view uuid_text(std::string_view _payload) {
    const auto at = _payload.rfind(key);
    if (at == std::string_view::npos) {
        return {};
    }
    _payload.remove_prefix(at + key.size());
    return _payload.substr(0, _payload.find('"'));
}

long number_in(std::string_view _text) {
    long number = -1;
    const auto read = std::from_chars(_text.data(), _text.data() + _text.size(), number);
    return read.ec == std::errc() ? number : -1;
}

}  // namespace

long uuid_in(std::string_view _payload) {
    return number_in(uuid_text(_payload));
}

long value_in(std::string_view _payload) {
    for (const std::string_view word : {value_key, write_key}) {
        const auto at = _payload.find(word);
        if (at != std::string_view::npos) {
            return number_in(_payload.substr(at + word.size()));
        }
    }
    return -1;
}

std::string state_payload(long _value, std::size_t _bytes) {
    std::string state = R"({"data":{"functions":{"execute":{"value":")" + std::to_string(_value);
    const std::string middle = R"("}},"name":")";
    const std::string end = R"("}})";
    const std::size_t least = state.size() + middle.size() + end.size();
    state += middle;
    state.append(_bytes > least ? _bytes - least : 0, 'x');
    return state + end;
}

std::string state_topic(int _user, std::string_view _element) {
    return "local/api/v1/user" + std::to_string(_user) + "/status/elements/objects_list/" +
           std::string(_element);
}

std::string echo_payload(std::string_view _request, std::size_t _bytes) {
    constexpr std::string_view begin = "{\"data\":\"";
    std::string end = "\",\"uuid\":\"";
    end += uuid_text(_request);
    end += "\"}";
    std::string answer(begin);
    if (_bytes > begin.size() + end.size()) {
        answer.append(_bytes - begin.size() - end.size(), 'x');
    }
    return answer + end;
}

std::string echo_topic(std::string_view _request_topic, std::string_view _client, echo_way_t _way) {
    const std::string client(_client);
    const std::string asked = '/' + client + "/request/";
    std::string topic(_request_topic);
    const auto at = topic.find(asked);
    if (at != std::string::npos) {
        topic.replace(at, asked.size(),
                      _way == echo_way_t::as_server ? '/' + client + "/status/"
                                                    : "/re-" + client + "/request/");
    }
    return topic;
}

}  // namespace bench
