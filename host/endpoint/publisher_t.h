#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>

#include "endpoint/endpoint_counters_t.h"
#include "endpoint/message_sender_t.h"

namespace comunication {

/// What drivers publish, on its way to the sender: refuses what must not lie on the broker and what
/// the broker would not take. On the endpoint's thread; counters and sender outlive it.
class publisher_t {
 public:
    /// @p _packet_bytes the broker's limit of one message; 0: none.
    publisher_t(message_sender_t& _sender, endpoint_counters_t& _counts, std::size_t _packet_bytes);

    /// Nothing to say is refused, and so is a state under a topic that could not be taken back. An
    /// answer above the broker's limit is replaced with an error. What is sent; undefined: nothing.
    QJsonValue publish(const QString& _topic, const QJsonValue& _payload, utility::qos_t _qos,
                       bool _retain);

    /// Of a request that was refused; goes when nothing else waits, see message_sender_t.
    void refuse(const QString& _request_topic, const QJsonObject& _answer);

    /// A new connection: what is refused is told anew.
    void open() { told_topic = told_size = false; }

 private:
    QByteArray text_of(const QJsonValue& _payload);
    bool is_retainable(const QString& _topic);
    bool is_too_large(const outgoing_t& _message) const;
    QJsonValue replace_too_large(const outgoing_t& _message, const QJsonValue& _payload);

    message_sender_t& sender;
    endpoint_counters_t& counts;
    const std::size_t packet_bytes;
    // The same state goes to one user after the other, and is the same object.
    QJsonObject last_payload;
    QByteArray last_text;
    // Logged for this connection.
    bool told_topic = false;
    bool told_size = false;
};

}  // namespace comunication
