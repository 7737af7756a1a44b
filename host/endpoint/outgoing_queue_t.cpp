#include "endpoint/outgoing_queue_t.h"

namespace comunication {

namespace {
std::size_t weight(const outgoing_t& _message) {
    return std::size_t(_message.topic.size()) + std::size_t(_message.payload.size());
}
}  // namespace

outgoing_queue_t::outgoing_queue_t(std::size_t _most_messages, std::size_t _most_bytes)
    : most_messages(_most_messages), most_bytes(_most_bytes) {}

bool outgoing_queue_t::push(outgoing_t _message) {
    const std::size_t added = weight(_message);
    const bool is_message = _message.kind == outgoing_t::kind_t::message;
    if (is_message && (messages.size() >= most_messages || added > most_bytes - held)) {
        return false;
    }
    held += added;
    messages.push_back(std::move(_message));
    return true;
}

outgoing_t outgoing_queue_t::pop() {
    outgoing_t first = std::move(messages.front());
    messages.pop_front();
    held -= weight(first);
    return first;
}

void outgoing_queue_t::clear() {
    messages.clear();
    held = 0;
}

}  // namespace comunication
