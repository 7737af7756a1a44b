#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

struct mosquitto;

namespace bench {

/// Where a client comes in, and as whom.
struct door_t {
    std::string host = "127.0.0.1";  ///< or the path of a unix socket
    int port = 0;                    ///< 0: a unix socket
    std::string user;
    std::string password;
    int in_flight = 65535;  ///< of its own publications
};

/// One MQTT 5 connection of libmosquitto with the options of the server's own: no delay, as much in
/// flight as may be. No Qt, no thread: client_loop_t serves it.
class load_client_t {
 public:
    using on_message_t = std::function<void(std::string_view _topic, std::string_view _payload)>;

    explicit load_client_t(on_message_t _on_message);
    ~load_client_t();
    load_client_t(const load_client_t&) = delete;
    load_client_t& operator=(const load_client_t&) = delete;

    /// Both wait for the broker's answer; false: there was none, or a refusal. Comes again until
    /// the limit where there is no broker yet, or one that hangs up, as it does while a password
    /// waits for its turn.
    bool sign_in(const door_t& _door, std::chrono::seconds _limit = std::chrono::seconds(20));
    bool subscribe(const std::string& _filter, int _qos);
    /// False: not sent.
    bool publish(const std::string& _topic, std::string_view _payload, int _qos,
                 bool _retain = false);
    /// How many of its publications the broker has answered.
    std::size_t delivered() const { return delivered_count; }

    int socket() const;
    bool is_open() const { return state == state_t::open && socket() >= 0; }
    bool wants_write() const;
    void read();
    void write();
    /// Keep-alive; once a second.
    void tend();

 private:
    enum class state_t { closed, asked, refused, open };

    state_t try_to_sign_in(const door_t& _door);
    /// Serves this client alone until @p _done or some seconds have passed.
    bool wait(const std::function<bool()>& _done);
    void set_callbacks();

    const on_message_t on_message;
    mosquitto* handle = nullptr;
    state_t state = state_t::closed;
    bool subscribed = false;
    std::size_t delivered_count = 0;
};

}  // namespace bench
