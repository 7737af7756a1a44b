#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "base/token_bucket_t.h"
#include "broker/plugin/text_map.h"

namespace broker::plugin {

/// How much one user may publish. All users share the host's one connection, and what its reader
/// does not keep up with waits in the broker without end: what is far beyond any app's needs goes
/// no further than to here. The broker reads it all the same, one packet of each client in turn,
/// the host's too: who goes on and on is sent away for some seconds.
class publish_meter_t {
 public:
    enum class verdict_t {
        passes,
        stopped,
        stopped_and_told,  ///< for the first time within some seconds
        sent_away,         ///< the connection is to be closed
    };

    /// How long somebody who was sent away stays out.
    static constexpr std::chrono::seconds away{5};

    /// What flows in a second, of messages and of bytes; 0: no limit. Bytes may come in bursts of
    /// some seconds' worth.
    publish_meter_t(double _messages, double _bytes) : messages(_messages), bytes(_bytes) {}

    verdict_t take(const std::string& _user, std::size_t _bytes, std::chrono::milliseconds _now);

    /// Whether this user was sent away a moment ago.
    bool is_away(std::string_view _user, std::chrono::milliseconds _now) const;

 private:
    struct allowance_t {
        base::token_bucket_t messages;
        base::token_bucket_t bytes;
        base::token_bucket_t reports;
        /// Of what is stopped.
        base::token_bucket_t excess_messages;
        base::token_bucket_t excess_bytes;
        std::chrono::milliseconds back{0};
    };

    allowance_t& allowance_of(const std::string& _user);

    const double messages;
    const double bytes;
    text_map_t<allowance_t> users;
};

}  // namespace broker::plugin
