#pragma once

#include <cstdint>
#include <string>

#include "broker/plugin/password_check_t.h"

namespace broker::plugin {

/// The broker's object of a connection or of a session that waits for one; only its address
/// counts. The broker may use an address again after the object has gone, and tells of that only
/// when somebody signs in with it.
using client_key_t = const void*;

/// One client that has signed in, until the broker has forgotten it.
struct session_t {
    enum class state_t {
        online,
        left,     ///< a moment ago: whether the broker keeps its session is not known yet
        offline,  ///< the broker keeps it
    };

    client_key_t client = nullptr;
    std::string id;  ///< the client identifier
    std::string user;
    std::string address;
    std::uint64_t life = 0;  ///< of the user's account; 0: the host's own
    state_t state = state_t::online;
    bool outdated = false;  ///< another connection has its identifier now
    /// What is queued for it must not be delivered any more.
    bool doomed = false;
    std::uint64_t order = 0;  ///< of waiting offline, or of waiting to be deleted

    bool is_host() const { return life == 0; }
    visitor_t visitor() const { return {user, id, address}; }
};

}  // namespace broker::plugin
