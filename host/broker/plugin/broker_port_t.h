#pragma once

#include <string>

namespace broker::plugin {

/// What the gate asks of the broker. Called on the broker's thread only.
class broker_port_t {
 public:
    virtual ~broker_port_t() = default;

    /// Ends the connections of this user; not their sessions.
    virtual void close_user(const std::string& _user) = 0;

    /// Ends the connection of the client with this identifier, which has one; not its session.
    virtual void close_client(const std::string& _id) = 0;

    /// Whether the broker keeps a session with this identifier. Only for one that no connected
    /// client has.
    virtual bool has_session(const std::string& _id) = 0;

    /// Sends a message to the client with this identifier, which need not have subscribed.
    virtual void send(const std::string& _id, const std::string& _topic,
                      const std::string& _text) = 0;
};

}  // namespace broker::plugin
