#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "broker/plugin/password_check_t.h"
#include "broker/plugin/text_map.h"

namespace broker::plugin {

/// Passwords that wait, one lane for each name, served in turn: who floods one name keeps nobody
/// else waiting. In a full lane, or with too many lanes, a new one takes the place of others drawn
/// by lot, so that no flood can close the door by being there first.
class fair_lanes_t {
 public:
    static constexpr std::size_t most_lanes = 256;
    static constexpr std::size_t most_in_lane = 8;

    /// What had to make room for it.
    std::vector<password_check_t> push(password_check_t _check);

    /// The next one; nothing: none waits.
    std::optional<password_check_t> pop();

    std::size_t size() const { return waiting; }

 private:
    using lane_t = std::deque<password_check_t>;

    std::size_t draw(std::size_t _count);
    void close_lane(std::size_t _place);
    std::vector<password_check_t> drop_lane();

    text_map_t<lane_t> lanes;
    std::vector<std::string> names;  ///< of the lanes
    std::size_t turn = 0;            ///< whose turn it is, among names
    std::size_t waiting = 0;
    std::minstd_rand lots{std::random_device()()};
};

}  // namespace broker::plugin
