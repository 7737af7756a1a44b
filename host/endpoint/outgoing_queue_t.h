#pragma once

#include <QByteArray>
#include <QHash>
#include <cstddef>
#include <deque>

#include "comunication/qos_t.h"

namespace comunication {

/// One message on its way to the broker, a change of the status subscription that must not
/// overtake the messages before it, or a mark among them.
struct outgoing_t {
    enum class kind_t { message, subscribe, unsubscribe, mark };

    QByteArray topic;    ///< UTF-8
    QByteArray payload;  ///< empty: deletes a retained message
    utility::qos_t qos = utility::qos_t::exactly_once;
    bool retain = false;
    kind_t kind = kind_t::message;
    quint64 mark = 0;  ///< which one
};

/// First in, first out, with an upper limit of messages and of bytes. A state that waits gives way
/// to one of the same topic that holds all that it tells, or to its deletion: the new one takes its
/// place. Nothing crosses a change of the subscription. Not thread-safe.
class outgoing_queue_t {
 public:
    outgoing_queue_t(std::size_t _most_messages, std::size_t _most_bytes);

    /// False: there is no room and the message is not taken. Answers find room twice as long as
    /// states, changes of a subscription and marks always.
    bool push(outgoing_t _message);

    /// The oldest message. Only when the queue is not empty.
    const outgoing_t& front() const { return messages.front(); }
    outgoing_t pop();

    bool is_empty() const { return messages.empty(); }
    std::size_t size() const { return messages.size(); }
    std::size_t bytes() const { return held; }
    /// Of the messages, those that are not retained.
    std::size_t answers() const { return waiting_answers; }
    bool has_marks() const { return waiting_marks > 0; }

 private:
    void count(const outgoing_t& _message, int _by);
    bool has_room(const outgoing_t& _message) const;
    bool replace(const outgoing_t& _message);
    outgoing_t& at(quint64 _place) { return messages[std::size_t(_place - popped)]; }

    const std::size_t most_messages;
    const std::size_t most_bytes;
    std::size_t held = 0;  ///< bytes of topics and payloads
    std::size_t waiting_answers = 0;
    std::size_t waiting_marks = 0;
    std::deque<outgoing_t> messages;
    quint64 popped = 0;  ///< place of the first message
    /// Where the last retained message of a topic waits; none before a change of the subscription.
    QHash<QByteArray, quint64> places;
};

}  // namespace comunication
