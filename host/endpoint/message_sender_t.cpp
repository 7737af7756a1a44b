#include "endpoint/message_sender_t.h"

#include <utility>

#include "logs/log_line.h"

namespace comunication {

namespace {

constexpr const char* source = "host/endpoint/message_sender_t";

/// Mosquitto 2.0.11 acknowledges and then loses retained messages of a publisher with more in
/// flight than it allows, and it allows 20 unless told otherwise.
constexpr int window = 20;

/// Answers to be sent until no more is asked for: a request of another user waits behind them, and
/// a write may be some hundred states.
constexpr std::size_t loaded_messages = 200;
constexpr std::size_t loaded_bytes = 1024 * 1024;
/// Of the window, for refusals: an answer finds a place in it at once.
constexpr int window_of_refusals = 5;

}  // namespace

message_sender_t::message_sender_t(mosquitto_client_t& _client, endpoint_counters_t& _counts,
                                   std::size_t _most_messages, std::size_t _most_bytes,
                                   listener_t _listener)
    : client(_client),
      counts(_counts),
      listener(std::move(_listener)),
      queue(_most_messages, _most_bytes) {}

void message_sender_t::send(outgoing_t _message) {
    if (!is_open) {
        ++counts.dropped_disconnected;
        if (!std::exchange(told_closed, true)) {
            ::utility::log_line(QStringLiteral("Not connected to the broker, messages are dropped"),
                                3, "send", source, __LINE__);
        }
        return;
    }
    const bool is_state = _message.retain;
    if (!queue.push(std::move(_message))) {
        drop(is_state);
        return;
    }
    send_more();
}

void message_sender_t::drop(bool _is_state) {
    ++counts.dropped_full;
    if (lost_states + lost_answers == 0) {
        ::utility::log_line(
            QStringLiteral("%1 messages of %2 bytes wait for the broker, more are dropped")
                .arg(queue.size())
                .arg(queue.bytes()),
            2, "drop", source, __LINE__);
    }
    ++(_is_state ? lost_states : lost_answers);
}

void message_sender_t::tell_lost() {
    const quint64 states = std::exchange(lost_states, 0);
    const quint64 answers = std::exchange(lost_answers, 0);
    ::utility::log_line(QStringLiteral("Dropped %1 states and %2 answers, too many waited for the "
                                       "broker: all states are published again")
                            .arg(states)
                            .arg(answers),
                        2, "tell_lost", source, __LINE__);
    if (listener.states_lost) {
        listener.states_lost();
    }
}

void message_sender_t::mark(quint64 _mark) {
    if (!is_open) {
        tell_mark(_mark, false);
        return;
    }
    outgoing_t mark;
    mark.kind = outgoing_t::kind_t::mark;
    mark.mark = _mark;
    static_cast<void>(queue.push(std::move(mark)));
    send_more();
}

void message_sender_t::tell_mark(quint64 _mark, bool _complete) const {
    if (listener.marked) {
        listener.marked(_mark, _complete);
    }
}

void message_sender_t::send_refusal(const QString& _user, outgoing_t _message) {
    if (!is_open || !refusals.push(_user, std::move(_message))) {
        ++counts.refusals_dropped;
        return;
    }
    send_more();
}

bool message_sender_t::is_loaded() const {
    // A portion of elements is under way, and the next: requests need not wait for all of them.
    if (queue.has_marks() && queue.answers() < loaded_messages) {
        return false;
    }
    return queue.size() >= loaded_messages || queue.bytes() >= loaded_bytes;
}

void message_sender_t::on_delivered(bool _accepted) {
    --in_flight;
    ++(_accepted ? counts.published : counts.refused);
    send_more();
}

void message_sender_t::close() {
    is_open = false;
    counts.dropped_disconnected += quint64(in_flight) + refusals.size();
    while (!queue.is_empty()) {
        const outgoing_t dropped = queue.pop();
        if (dropped.kind == outgoing_t::kind_t::mark) {
            tell_mark(dropped.mark, false);
        } else {
            ++counts.dropped_disconnected;
        }
    }
    refusals.clear();
    in_flight = 0;
    lost_states = lost_answers = 0;
    told_closed = false;
}

void message_sender_t::send_more() {
    if (std::exchange(sending, true)) {
        return;
    }
    while (is_open && in_flight < window && !queue.is_empty()) {
        // A QoS 2 message takes effect with its second half: a subscription waits for that.
        if (queue.front().kind != outgoing_t::kind_t::message && in_flight > 0) {
            break;
        }
        hand_over(queue.pop());
    }
    while (is_open && in_flight < window_of_refusals && queue.is_empty() && !refusals.is_empty()) {
        hand_over(refusals.pop());
    }
    sending = false;
    if (queue.is_empty() && lost_states + lost_answers > 0) {
        tell_lost();
    }
}

void message_sender_t::hand_over(const outgoing_t& _next) {
    if (_next.kind == outgoing_t::kind_t::subscribe) {
        client.subscribe(QString::fromUtf8(_next.topic), _next.qos, mosquitto_client_t::no_local,
                         status_subscription);
        return;
    }
    if (_next.kind == outgoing_t::kind_t::unsubscribe) {
        client.unsubscribe(QString::fromUtf8(_next.topic));
        return;
    }
    if (_next.kind == outgoing_t::kind_t::mark) {
        tell_mark(_next.mark, true);
        return;
    }
    ++in_flight;
    // The connection may end inside, and with it all that is in flight.
    if (client.publish(_next) == 0 && is_open) {
        --in_flight;
        ++counts.refused;
    }
}

}  // namespace comunication
