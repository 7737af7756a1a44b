#include "drivers/plugins/plugin_driver_knx/write_queue_t.h"

namespace knx {

write_queue_t::taken_t write_queue_t::push(const telegram_t& _telegram, bool _is_state) {
    const auto older = _is_state ? states.constFind(_telegram.destination) : states.constEnd();
    if (older != states.constEnd()) {
        waiting[std::size_t(*older - first)] = _telegram;
        return taken_t::replaced;
    }
    if (waiting.size() >= limit) {
        return taken_t::full;
    }
    waiting.push_back(_telegram);
    if (_is_state) {
        states.insert(_telegram.destination, first + waiting.size() - 1);
    } else {
        // What comes later for the address must not overtake this one.
        states.remove(_telegram.destination);
    }
    return taken_t::added;
}

std::optional<telegram_t> write_queue_t::take() {
    if (waiting.empty()) {
        return std::nullopt;
    }
    const telegram_t telegram = waiting.front();
    waiting.pop_front();
    const auto state = states.constFind(telegram.destination);
    if (state != states.constEnd() && *state == first) {
        states.erase(state);
    }
    ++first;
    return telegram;
}

void write_queue_t::clear() {
    waiting.clear();
    states.clear();
}

}  // namespace knx
