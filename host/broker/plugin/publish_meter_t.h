#pragma once

#include <chrono>
#include <string>

#include "base/token_bucket_t.h"
#include "broker/plugin/text_map.h"

namespace broker::plugin {

/// How much one user may publish. All users share the host's one connection, and what its reader
/// does not keep up with waits in the broker without end: what is far beyond any app's needs goes
/// no further than to here.
class publish_meter_t {
 public:
    enum class verdict_t { passes, stopped, stopped_and_told };

    /// What flows in a second, of messages and of bytes; 0: no limit.
    publish_meter_t(double _messages, double _bytes) : messages(_messages), bytes(_bytes) {}

    /// stopped_and_told: for the first time within some seconds.
    verdict_t take(const std::string& _user, std::size_t _bytes, std::chrono::milliseconds _now);

 private:
    struct allowance_t {
        base::token_bucket_t messages;
        base::token_bucket_t bytes;
        base::token_bucket_t reports;
    };

    const double messages;
    const double bytes;
    text_map_t<allowance_t> users;
};

}  // namespace broker::plugin
