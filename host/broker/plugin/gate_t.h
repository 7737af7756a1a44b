#pragma once

#include <set>
#include <string>
#include <string_view>

#include "broker/plugin/broker_port_t.h"
#include "broker/plugin/doorkeeper_t.h"
#include "broker/plugin/event_log_t.h"
#include "broker/plugin/gate_settings_t.h"
#include "broker/plugin/host_link_t.h"
#include "broker/plugin/moment_t.h"
#include "broker/plugin/publish_meter_t.h"
#include "broker/plugin/session_table_t.h"

namespace broker::plugin {

/// Who wants to connect, as the broker tells it.
struct sign_in_t {
    client_key_t client = nullptr;
    std::string_view id;
    std::string_view name;      ///< empty: none was given
    std::string_view password;  ///< no data: none was given
    std::string_view address;
    bool clean = true;        ///< wants nothing of a former session
    bool websockets = false;  ///< the connection is open and one by WebSockets
};

/// All decisions of the plugin. Every function is called on the broker's thread, none waits
/// for anything, what cannot be judged is refused.
class gate_t {
 public:
    enum class entry_t {
        open,
        refused,
        unanswered,  ///< the connection is closed without an answer: the client may try again
    };
    enum class access_t { read, write, subscribe, unsubscribe };

    /// @p _port outlives this object.
    gate_t(const gate_settings_t& _settings, broker_port_t* _port, clock_t _clock);

    entry_t sign_in(const sign_in_t& _who);

    /// @p _topic: for subscribe and unsubscribe the filter.
    /// @p _bytes of the message.
    bool may(client_key_t _client, access_t _access, std::string_view _topic, bool _retain,
             std::size_t _bytes = 0);

    /// A message of the host on the control topic: effective when this returns.
    void control(client_key_t _client, std::string_view _text);

    void departed(client_key_t _client);

    /// The broker is about to judge all its clients again, connected or not, as if they signed
    /// in: all of them stay. It would crash at one that is not connected.
    void reload() { reloading = true; }

    /// Something else may be done now; called again and again.
    void tick();

 private:
    entry_t sign_in_host(const sign_in_t& _who);
    entry_t admit(const sign_in_t& _who, const account_t& _account);
    entry_t refuse(event_kind_t _kind, const sign_in_t& _who, std::string_view _why);
    void apply(control_message_t* _message);
    bool is_known(const sign_in_t& _who);
    void report();
    bool is_within_measure(const session_t& _session, std::string_view _topic, std::size_t _bytes);
    void send_away();

    const gate_settings_t settings;
    broker_port_t* const port;
    const clock_t clock;
    event_log_t events;
    doorkeeper_t doorkeeper;
    session_table_t sessions;
    publish_meter_t meter;
    std::set<client_key_t> flooders;  ///< to be sent away; the broker is still busy with them
    host_link_t link;
    std::string connection_topic;
    std::uint64_t asked = 0;             ///< the host was asked to delete sessions up to this one
    std::chrono::milliseconds again{0};  ///< when it is asked anew
    std::chrono::milliseconds aged{0};   ///< when sessions were last looked at for their age
    bool reloading = false;
    bool unsettled = false;  ///< somebody has left since the last tick
};

}  // namespace broker::plugin
