#include "endpoint/request_lanes_t.h"

#include <utility>

namespace comunication {

bool request_lanes_t::push(request_t _request) {
    const std::size_t more = _request.bytes();
    auto lane = lanes.find(_request.levels.user);
    const bool is_new = lane == lanes.end();
    const std::size_t waiting = is_new ? 0 : lane->requests.size();
    const std::size_t waiting_bytes = is_new ? 0 : lane->bytes;
    if (waiting >= limits.waiting_requests || waiting_bytes + more > limits.waiting_bytes ||
        held + more > limits.waiting_bytes_of_all) {
        return false;
    }
    if (is_new) {
        if (!served.contains(_request.levels.user)) {
            turns.push_back(_request.levels.user);
        }
        lane = lanes.insert(_request.levels.user, {});
    }
    lane->bytes += more;
    held += more;
    lane->requests.push_back(std::move(_request));
    return true;
}

std::optional<request_t> request_lanes_t::pop() {
    if (turns.empty()) {
        return {};
    }
    const QString user = std::move(turns.front());
    turns.pop_front();
    served.insert(user);
    return take_first(lanes.find(user));
}

std::optional<request_t> request_lanes_t::pop_more(const QString& _user,
                                                   bool (*_fits)(const request_t&)) {
    const auto lane = lanes.find(_user);
    if (lane == lanes.end() || !served.contains(_user) || !_fits(lane->requests.front())) {
        return {};
    }
    return take_first(lane);
}

request_t request_lanes_t::take_first(lanes_t::iterator _lane) {
    request_t next = std::move(_lane->requests.front());
    _lane->requests.pop_front();
    _lane->bytes -= next.bytes();
    held -= next.bytes();
    if (_lane->requests.empty()) {
        lanes.erase(_lane);
    }
    return next;
}

void request_lanes_t::release(const QString& _user) {
    if (served.remove(_user) && lanes.contains(_user)) {
        turns.push_back(_user);
    }
}

void request_lanes_t::clear() {
    lanes.clear();
    turns.clear();
    held = 0;
}

}  // namespace comunication
