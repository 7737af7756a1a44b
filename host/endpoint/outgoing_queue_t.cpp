#include "endpoint/outgoing_queue_t.h"

#include "endpoint/state_rules.h"

namespace comunication {

namespace {

using kind_t = outgoing_t::kind_t;

std::size_t weight(const outgoing_t& _message) {
    return std::size_t(_message.topic.size()) + std::size_t(_message.payload.size());
}

}  // namespace

outgoing_queue_t::outgoing_queue_t(std::size_t _most_messages, std::size_t _most_bytes)
    : most_messages(_most_messages), most_bytes(_most_bytes) {}

bool outgoing_queue_t::push(outgoing_t _message) {
    const bool is_state = _message.kind == kind_t::message && _message.retain;
    if (is_state && replace(_message)) {
        return true;
    }
    if (_message.kind == kind_t::message && !has_room(_message)) {
        return false;
    }
    if (is_state) {
        places.insert(_message.topic, popped + messages.size());
    } else if (_message.kind == kind_t::subscribe || _message.kind == kind_t::unsubscribe) {
        places.clear();
    }
    count(_message, 1);
    messages.push_back(std::move(_message));
    return true;
}

void outgoing_queue_t::count(const outgoing_t& _message, int _by) {
    held += std::size_t(_by) * weight(_message);
    if (_message.kind == kind_t::mark) {
        waiting_marks += std::size_t(_by);
    } else if (_message.kind == kind_t::message && !_message.retain) {
        waiting_answers += std::size_t(_by);
    }
}

bool outgoing_queue_t::has_room(const outgoing_t& _message) const {
    const std::size_t share = _message.retain ? 1 : 2;
    return messages.size() < share * most_messages && held + weight(_message) <= share * most_bytes;
}

bool outgoing_queue_t::replace(const outgoing_t& _message) {
    const auto place = places.constFind(_message.topic);
    if (place == places.constEnd()) {
        return false;
    }
    outgoing_t& waiting = at(*place);
    if (!state_rules::gives_way(waiting.payload, _message.payload) ||
        held - weight(waiting) + weight(_message) > most_bytes) {
        return false;
    }
    count(waiting, -1);
    waiting = _message;
    count(waiting, 1);
    return true;
}

outgoing_t outgoing_queue_t::pop() {
    outgoing_t first = std::move(messages.front());
    messages.pop_front();
    const auto place = places.constFind(first.topic);
    if (place != places.constEnd() && *place == popped) {
        places.erase(place);
    }
    ++popped;
    count(first, -1);
    return first;
}

}  // namespace comunication
