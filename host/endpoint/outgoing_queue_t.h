#pragma once

#include <QByteArray>
#include <cstddef>
#include <deque>

#include "comunication/qos_t.h"

namespace comunication {

/// One message on its way to the broker, a change of the status subscription that must not overtake
/// the messages before it, or a mark behind them.
struct outgoing_t {
    enum class kind_t { message, subscribe, unsubscribe, mark };

    QByteArray topic;    ///< UTF-8
    QByteArray payload;  ///< empty: deletes a retained message
    utility::qos_t qos = utility::qos_t::exactly_once;
    bool retain = false;
    kind_t kind = kind_t::message;
    quint64 mark = 0;  ///< which one
};

/// First in, first out, with an upper limit of messages and of bytes. Not thread-safe.
class outgoing_queue_t {
 public:
    outgoing_queue_t(std::size_t _most_messages, std::size_t _most_bytes);

    /// False: there is no room and the message is not taken. Changes of a subscription and
    /// marks always find room.
    bool push(outgoing_t _message);

    /// The oldest message. Only when the queue is not empty.
    const outgoing_t& front() const { return messages.front(); }
    outgoing_t pop();

    void clear();
    bool is_empty() const { return messages.empty(); }
    std::size_t size() const { return messages.size(); }
    std::size_t bytes() const { return held; }

 private:
    const std::size_t most_messages;
    const std::size_t most_bytes;
    std::size_t held = 0;  ///< bytes of topics and payloads
    std::deque<outgoing_t> messages;
};

}  // namespace comunication
