#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <set>

#include "broker/plugin/fair_lanes_t.h"

namespace broker::plugin {

/// The passwords that wait to be checked. Bounded; one that waits already is not queued twice.
/// Whoever had to make room and comes again with the same password goes before those who come for
/// the first time: a guesser has a new one each time, a user has not.
class check_queue_t {
 public:
    /// How many checks of some name were pushed out, which a report tells.
    std::vector<visitor_t> push(password_check_t _check);

    std::optional<password_check_t> pop();

    bool contains(const digest_t& _digest) const { return digests.count(_digest) != 0; }
    bool is_empty() const { return digests.empty(); }
    std::size_t size() const { return digests.size(); }

 private:
    static std::uint64_t mark_of(const digest_t& _digest);
    std::uint64_t& place_of(std::uint64_t _mark) {
        return pushed_out[static_cast<std::size_t>(_mark % pushed_out.size())];
    }

    fair_lanes_t again;
    fair_lanes_t first;
    std::set<digest_t> digests;
    /// Marks of those that had to make room; an old one goes when a new one needs its place.
    std::array<std::uint64_t, 32'768> pushed_out{};
    unsigned int pops = 0;
};

}  // namespace broker::plugin
