#pragma once

#include <functional>

#include "endpoint/endpoint_counters_t.h"
#include "endpoint/mosquitto_client_t.h"
#include "endpoint/outgoing_queue_t.h"
#include "endpoint/refusal_queue_t.h"

namespace comunication {

/// Hands queued messages to a connection, never more at a time than the broker keeps safe, and
/// counts what becomes of them. On the connection's thread; the counters and the connection
/// outlive it.
class message_sender_t {
 public:
    /// Identifier of the status subscription.
    static constexpr quint32 status_subscription = 2;

    /// What the owner hears; nothing of it is called when it is empty.
    struct listener_t {
        /// Of each mark once: the broker has answered all that was sent before it; not
        /// @p _complete: or that was lost with the connection.
        std::function<void(quint64 _mark, bool _complete)> marked;
        /// The queue was too full for some states or deletions, and has room again.
        std::function<void()> states_lost;
    };

    message_sender_t(mosquitto_client_t& _client, endpoint_counters_t& _counts,
                     std::size_t _most_messages, std::size_t _most_bytes, listener_t _listener);

    /// Takes one message, sent as soon as possible; dropped and counted when there is no
    /// connection or no room. A change of the status subscription has the filter as its topic.
    void send(outgoing_t _message);

    /// Sets a mark behind what was sent.
    void mark(quint64 _mark);

    /// The same for the answer to a refused request of @p _user: sent when nothing else waits, and
    /// dropped when too many of that user's do.
    void send_refusal(const QString& _user, outgoing_t _message);

    /// So much waits that nothing more should be asked for.
    bool is_loaded() const;

    /// To be called when the broker has answered.
    void on_delivered(bool _accepted);

    /// The connection can be used.
    void open() { is_open = true; }

    /// The connection is gone: what waits is dropped and counted.
    void close();

    /// Nothing waits for being sent or for an answer.
    bool is_idle() const { return in_flight == 0 && queue.is_empty() && refusals.is_empty(); }

 private:
    void send_more();
    void hand_over(const outgoing_t& _next);
    void drop(bool _is_state);
    void tell_lost();
    void tell_mark(quint64 _mark, bool _complete) const;

    mosquitto_client_t& client;
    endpoint_counters_t& counts;
    const listener_t listener;
    outgoing_queue_t queue;
    refusal_queue_t refusals;
    int in_flight = 0;  ///< handed to the library, not yet answered
    bool is_open = false;
    bool sending = false;  ///< send_more() is running
    // Dropped since the queue was empty.
    quint64 lost_states = 0;
    quint64 lost_answers = 0;
    bool told_closed = false;  ///< one line per burst
};

}  // namespace comunication
