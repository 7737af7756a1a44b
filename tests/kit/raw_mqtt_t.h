#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <functional>
#include <memory>

#include "kit/raw_connect_t.h"

class QIODevice;

namespace kit {

struct raw_message_t {
    QByteArray topic;
    QByteArray payload;
    int qos;
    bool retain;
};

/// An MQTT client that does what it is told, right or wrong, and blocks meanwhile. Acknowledges
/// what it gets unless told not to.
class raw_mqtt_t {
 public:
    enum class way_t { tcp, websockets, local };

    static constexpr int closed = -1;  ///< instead of a code: the connection ended without one

    /// @p _where: port or path. Connects the socket; nothing is said yet.
    raw_mqtt_t(way_t _way, const QString& _where);
    ~raw_mqtt_t();

    /// Whether the socket is connected.
    bool is_open() const;

    /// The broker's answer, 0: it let the client in.
    int connect(const raw_connect_t& _as);
    /// As the last answer to connect() said.
    bool had_session() const { return session_present; }

    /// The broker's answer: 128 and above is a refusal.
    int subscribe(const QByteArray& _filter, int _qos = 1);
    /// The broker's answer; what versions before 5 and QoS 0 do not tell is 0.
    int publish(const QByteArray& _topic, const QByteArray& _payload, int _qos = 1,
                bool _retain = false);
    /// Says good-bye, so that no last will is due, and waits until the broker has hung up.
    void disconnect();
    /// Ends the connection without a word.
    void vanish();

    /// Waits until a message fits, among those that are here and those to come; false: the
    /// connection ended, or none came within some seconds.
    bool wait_for_message(const std::function<bool(const raw_message_t&)>& _fits);
    /// What has come and was read so far.
    const QList<raw_message_t>& so_far() const { return messages; }
    void forget() { messages.clear(); }
    /// Payloads that came on @p _topic until @p _fence came on it or the connection ended.
    QList<QByteArray> payloads_until(const QByteArray& _topic, const QByteArray& _fence);
    /// Everything that has come up to an answer to a ping.
    const QList<raw_message_t>& received();
    /// Whether the broker ends the connection within some seconds.
    bool is_closed();
    /// A ping is answered.
    bool is_alive();

    bool acknowledges = true;

 private:
    struct packet_t {
        int type = 0;  ///< 0: none, the connection has ended
        int flags = 0;
        QByteArray body;
    };

    bool write_packet(int _head, const QByteArray& _body);
    packet_t read_packet();
    /// Handles what comes until a packet of this type.
    packet_t wait_for(int _type);
    /// Handles a message, or the broker's half of a handshake.
    void take(const packet_t& _packet);
    void take_message(const packet_t& _packet);
    void acknowledge(int _head, quint16 _id);
    bool fill(qsizetype _size);
    void upgrade();
    QByteArray frame(const QByteArray& _packet) const;

    way_t way;
    int version = 5;
    bool session_present = false;
    quint16 last_id = 0;
    std::unique_ptr<QIODevice> socket;
    QByteArray raw;     ///< read, not unpacked
    QByteArray buffer;  ///< of packets
    QList<raw_message_t> messages;
};

}  // namespace kit
