#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "broker/plugin/stored_hash_t.h"
#include "broker/plugin/time_budget_t.h"

namespace broker::plugin {

/// What the broker's configuration says in its "plugin_opt_..." lines.
struct gate_settings_t {
    std::string host_account;     ///< host_account; cannot be an API user's name
    std::string host_address;     ///< host_address: path of the socket that it has to come by
    stored_hash_t host_password;  ///< host_hash; with few iterations, it is checked at once
    /// idle_seconds: how long a session is kept without a connection.
    std::chrono::seconds idle{7 * 24 * 3'600};
    std::size_t sessions_of_user = 8;  ///< sessions_of_user: kept without a connection
    /// publishes_per_second, bytes_per_second: what one user may publish; 0: no limit.
    unsigned int publishes_per_second = 1'000;
    unsigned int bytes_per_second = 2 * 1024 * 1024;
    /// at_once_ms: the longest that the broker may be busy with one password, for one part in
    /// fifty of its time; 0: never.
    std::chrono::milliseconds at_once{20};

    /// Takes one of the lines over. Empty, or why not.
    std::string set(std::string_view _key, std::string_view _value);

    /// Empty, or what is missing.
    std::string check() const;
};

}  // namespace broker::plugin
