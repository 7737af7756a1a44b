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

void tell_once(bool& _told, const QString& _line) {
    if (!std::exchange(_told, true)) {
        ::utility::log_line(_line, 3, "send", source, __LINE__);
    }
}

}  // namespace

message_sender_t::message_sender_t(mosquitto_client_t& _client, endpoint_counters_t& _counts,
                                   std::size_t _most_messages, std::size_t _most_bytes,
                                   marked_t _marked)
    : client(_client),
      counts(_counts),
      marked(std::move(_marked)),
      queue(_most_messages, _most_bytes) {}

void message_sender_t::send(outgoing_t _message) {
    if (!is_open) {
        ++counts.dropped_disconnected;
        tell_once(told_closed, QStringLiteral("Not connected to the broker, messages are dropped"));
        return;
    }
    if (!queue.push(std::move(_message))) {
        ++counts.dropped_full;
        tell_once(told_full,
                  QStringLiteral("Too many messages wait for the broker, more are dropped"));
        return;
    }
    send_more();
}

void message_sender_t::mark(quint64 _mark) {
    if (!is_open) {
        marked(_mark, false);
        return;
    }
    outgoing_t mark;
    mark.kind = outgoing_t::kind_t::mark;
    mark.mark = _mark;
    static_cast<void>(queue.push(std::move(mark)));
    send_more();
}

void message_sender_t::send_refusal(const QString& _user, outgoing_t _message) {
    if (!is_open || !refusals.push(_user, std::move(_message))) {
        ++counts.refusals_dropped;
        return;
    }
    send_more();
}

bool message_sender_t::is_loaded() const {
    return queue.size() >= loaded_messages || queue.bytes() >= loaded_bytes;
}

void message_sender_t::on_delivered(bool _accepted) {
    --in_flight;
    ++(_accepted ? counts.published : counts.refused);
    send_more();
}

void message_sender_t::close() {
    is_open = told_full = told_closed = false;
    counts.dropped_disconnected += quint64(in_flight) + refusals.size();
    refusals.clear();
    in_flight = 0;
    while (!queue.is_empty()) {
        const outgoing_t dropped = queue.pop();
        if (dropped.kind == outgoing_t::kind_t::mark) {
            marked(dropped.mark, false);
        } else {
            ++counts.dropped_disconnected;
        }
    }
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
    if (queue.is_empty()) {
        told_full = false;
    }
}

void message_sender_t::hand_over(const outgoing_t& _next) {
    if (_next.kind == outgoing_t::kind_t::subscribe) {
        client.subscribe(QString::fromUtf8(_next.topic), _next.qos, mosquitto_client_t::no_local,
                         status_subscription);
        return;
    }
    if (_next.kind == outgoing_t::kind_t::mark) {
        marked(_next.mark, true);
        return;
    }
    if (_next.kind == outgoing_t::kind_t::unsubscribe) {
        client.unsubscribe(QString::fromUtf8(_next.topic));
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
