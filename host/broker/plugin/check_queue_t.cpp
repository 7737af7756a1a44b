#include "broker/plugin/check_queue_t.h"

#include <cstring>
#include <utility>

namespace broker::plugin {

std::vector<visitor_t> check_queue_t::push(password_check_t _check) {
    if (!digests.insert(_check.digest).second) {
        return {};
    }
    const std::uint64_t mark = mark_of(_check.digest);
    fair_lanes_t& lanes = place_of(mark) == mark ? again : first;
    std::vector<visitor_t> names;
    for (password_check_t& other : lanes.push(std::move(_check))) {
        digests.erase(other.digest);
        place_of(mark_of(other.digest)) = mark_of(other.digest);
        names.push_back(std::move(other.visitor));
    }
    return names;
}

std::optional<password_check_t> check_queue_t::pop() {
    // Three of four, so that those who come for the first time do not wait for ever.
    const bool prefer_again = ++pops % 4 != 0;
    auto next = (prefer_again ? again : first).pop();
    if (!next) {
        next = (prefer_again ? first : again).pop();
    }
    if (next) {
        digests.erase(next->digest);
    }
    return next;
}

std::uint64_t check_queue_t::mark_of(const digest_t& _digest) {
    std::uint64_t mark = 0;
    std::memcpy(&mark, _digest.data(), sizeof mark);
    return mark | 1;  // 0 stands for none
}

}  // namespace broker::plugin
