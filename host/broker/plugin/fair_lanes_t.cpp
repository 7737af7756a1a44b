#include "broker/plugin/fair_lanes_t.h"

#include <iterator>
#include <utility>

namespace broker::plugin {

std::vector<password_check_t> fair_lanes_t::push(password_check_t _check) {
    std::vector<password_check_t> displaced;
    const std::string& name = _check.visitor.user;
    if (lanes.find(name) == lanes.end()) {
        if (names.size() >= most_lanes) {
            displaced = drop_lane();
        }
        names.push_back(name);
    }
    lane_t& lane = lanes[name];
    if (lane.size() < most_in_lane) {
        lane.push_back(std::move(_check));
        ++waiting;
    } else {
        displaced.push_back(std::exchange(lane[draw(lane.size())], std::move(_check)));
    }
    return displaced;
}

std::optional<password_check_t> fair_lanes_t::pop() {
    if (names.empty()) {
        return {};
    }
    turn %= names.size();
    const auto found = lanes.find(names[turn]);
    password_check_t next = std::move(found->second.front());
    found->second.pop_front();
    --waiting;
    if (found->second.empty()) {
        close_lane(turn);
    } else {
        ++turn;
    }
    return next;
}

std::size_t fair_lanes_t::draw(std::size_t _count) {
    return std::uniform_int_distribution<std::size_t>(0, _count - 1)(lots);
}

void fair_lanes_t::close_lane(std::size_t _place) {
    lanes.erase(names[_place]);
    std::swap(names[_place], names.back());
    names.pop_back();
}

std::vector<password_check_t> fair_lanes_t::drop_lane() {
    const std::size_t place = draw(names.size());
    lane_t& lane = lanes[names[place]];
    waiting -= lane.size();
    std::vector<password_check_t> dropped(std::make_move_iterator(lane.begin()),
                                          std::make_move_iterator(lane.end()));
    close_lane(place);
    return dropped;
}

}  // namespace broker::plugin
