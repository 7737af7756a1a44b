#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "broker/plugin/stored_hash_t.h"

namespace broker::plugin {

/// What the host tells: lines, the last one "end".
///
///     all 17                          change 18                       seen 4
///     connection home/1/connection    user carol $7$1000$...          end
///     user alice $7$1000$...          remove bob
///     end                             withdraw alice
///                                     end
///
/// "all" replaces what there was, "change" adds to it, each with a number that its answer repeats.
/// "withdraw": something that was readable for this user is not any more, so nothing that is
/// queued for it may be delivered. "seen" acknowledges a report.
struct control_message_t {
    enum class kind_t { all, change, seen };

    kind_t kind = kind_t::seen;
    std::uint64_t number = 0;
    std::optional<std::string> connection_topic;
    std::unordered_map<std::string, stored_hash_t> users;
    std::vector<std::string> removed;
    std::vector<std::string> withdrawn;
    /// Rows that could not be used, the others count. A user whose password cannot be used is
    /// among the removed. No secrets.
    std::vector<std::string> left_out;
    std::string refused;  ///< not empty: why nothing of the message may be used

    /// Never throws anything but std::bad_alloc.
    static control_message_t parse(std::string_view _text);
};

}  // namespace broker::plugin
