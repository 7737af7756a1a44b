#include "broker/plugin/event_log_t.h"

#include "broker/plugin/report_field.h"

namespace broker::plugin {

void event_log_t::note(event_kind_t _kind, const visitor_t& _who, std::string_view _detail,
                       std::time_t _now) {
    const std::string who = report_field(_who.user) + ' ' + report_field(_who.client) + ' ' +
                            report_field(_who.address);
    const std::string key = word_of(_kind) + (' ' + who);
    auto place = places.find(key);
    if (place == places.end()) {
        if (!take_room(_kind, _who.user)) {
            ++lost;
            return;
        }
        place = places.emplace(key, events.size()).first;
        events.push_back({_kind, who, report_field(_detail), 0, _now, _now});
    }
    event_t& event = events[place->second];
    ++event.count;
    event.last = _now;
}

bool event_log_t::take_room(event_kind_t _kind, const std::string& _user) {
    std::size_t& taken = is_of_strangers(_kind) ? of_strangers : of_user[_user];
    const std::size_t most = is_of_strangers(_kind) ? most_of_strangers : most_of_user;
    if (events.size() >= most_events || taken >= most) {
        return false;
    }
    ++taken;
    return true;
}

std::string event_log_t::take() {
    std::string text;
    for (const event_t& event : events) {
        text += std::string("event ") + word_of(event.kind) + ' ' + std::to_string(event.count) +
                ' ' + std::to_string(event.first) + ' ' + std::to_string(event.last) + ' ' +
                event.who + ' ' + event.detail + '\n';
    }
    if (lost != 0) {
        text += "lost " + std::to_string(lost) + '\n';
    }
    events.clear();
    places.clear();
    lost = 0;
    of_strangers = 0;
    of_user.clear();
    return text;
}

}  // namespace broker::plugin
