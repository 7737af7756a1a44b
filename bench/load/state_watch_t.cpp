#include "bench/load/state_watch_t.h"

#include <charconv>
#include <utility>

#include "bench/load/echo.h"

namespace bench {

namespace {

constexpr long deleted = -2;
constexpr std::string_view list = "/elements/objects_list/e-";

/// The number of the element that a state's topic ends with; -1: another topic.
long element_of(std::string_view _topic) {
    const auto at = _topic.rfind(list);
    long number = -1;
    if (at != std::string_view::npos) {
        _topic.remove_prefix(at + list.size());
        std::from_chars(_topic.data(), _topic.data() + _topic.size(), number);
    }
    return number;
}

}  // namespace

state_watch_t::state_watch_t(std::vector<door_t> _users, std::size_t _elements)
    : doors(std::move(_users)),
      elements(_elements),
      last(doors.size(), std::vector<long>(_elements, -1)) {}

state_watch_t::~state_watch_t() = default;

bool state_watch_t::sign_in(std::chrono::seconds _limit, int _qos) {
    for (std::size_t user = 0; user < doors.size(); ++user) {
        auto client = std::make_unique<load_client_t>(
            [this, user](std::string_view _topic, std::string_view _payload) {
                hear(user, _topic, _payload);
            });
        if (!client->sign_in(doors[user], _limit) ||
            !client->subscribe("local/api/v1/" + doors[user].user + "/status/#", _qos)) {
            return false;
        }
        loop.add(client.get());
        clients.push_back(std::move(client));
    }
    return true;
}

bool state_watch_t::run(const std::function<bool()>& _done, clock_t::duration _limit) {
    return loop.run(_done, _limit);
}

void state_watch_t::hear(std::size_t _user, std::string_view _topic, std::string_view _payload) {
    const long element = element_of(_topic);
    if (element < 0 || std::size_t(element) >= elements) {
        return;
    }
    const long value = _payload.empty() ? deleted : value_in(_payload);
    if (std::exchange(last[_user][std::size_t(element)], value) == -1) {
        end = clock_t::now();
        ++heard_count;
    }
    bytes = _payload.empty() ? bytes : _payload.size();
    if (_user == 0 && on_first) {
        on_first(std::size_t(element), value);
    }
}

}  // namespace bench
