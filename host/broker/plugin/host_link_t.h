#pragma once

#include <cstdint>
#include <string>

#include "broker/plugin/broker_port_t.h"

namespace broker::plugin {

struct control_message_t;

/// The way to the host: the client that the last control message came from. One report at a time
/// is under way, so that a host that does not listen fills no memory; what happens meanwhile
/// waits in the event log.
class host_link_t {
 public:
    static constexpr const char* control_topic = "$CONTROL/torlan/v1";
    static constexpr const char* answer_topic = "$CONTROL/torlan/v1/answer";
    static constexpr const char* report_topic = "$CONTROL/torlan/v1/report";

    explicit host_link_t(broker_port_t* _port) : port(_port) {}

    /// The host has spoken. What a former connection has not acknowledged is sent again.
    void hear(const std::string& _client_id);
    /// That client has gone.
    void lose(const std::string& _client_id);

    /// "done NUMBER", and a line for each row that was left out; or "refused NUMBER REASON".
    void answer(const control_message_t& _message);

    /// Whether report() may be called.
    bool is_free() const { return !client.empty() && under_way.empty(); }
    /// "report NUMBER" and then @p _lines; until seen() with the number.
    void report(const std::string& _lines);
    void seen(std::uint64_t _number);

 private:
    broker_port_t* const port;
    std::string client;
    std::string under_way;
    std::uint64_t number = 0;  ///< of the last report
};

}  // namespace broker::plugin
