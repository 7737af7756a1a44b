#pragma once

#include <cstddef>
#include <ctime>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "broker/plugin/event_kind_t.h"
#include "broker/plugin/password_check_t.h"
#include "broker/plugin/text_map.h"

namespace broker::plugin {

/// What has happened and was not reported yet. Bounded: the same by the same is one line with a
/// count, and what finds no room is counted. Strangers, and each user, have a part of the room
/// only, so that nobody keeps out what others do.
class event_log_t {
 public:
    static constexpr std::size_t most_events = 512;
    static constexpr std::size_t most_of_strangers = 256;
    static constexpr std::size_t most_of_user = 64;

    /// @p _detail: of several of the same kind by the same, the first one's is told.
    void note(event_kind_t _kind, const visitor_t& _who, std::string_view _detail,
              std::time_t _now);

    bool is_empty() const { return events.empty() && lost == 0; }

    /// "event KIND COUNT FIRST LAST USER CLIENT ADDRESS DETAIL" a line, times in seconds, texts as
    /// of report_field(); then "lost COUNT" if there was no room. Forgets all of it.
    std::string take();

 private:
    struct event_t {
        event_kind_t kind;
        std::string who;  ///< user, client, address, as written
        std::string detail;
        unsigned long count = 0;
        std::time_t first = 0;
        std::time_t last = 0;
    };

    bool take_room(event_kind_t _kind, const std::string& _user);

    std::vector<event_t> events;
    std::unordered_map<std::string, std::size_t> places;  ///< by kind and who
    text_map_t<std::size_t> of_user;
    std::size_t of_strangers = 0;
    unsigned long lost = 0;
};

}  // namespace broker::plugin
