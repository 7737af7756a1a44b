#pragma once

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace kit {

/// A user's MQTT client: MQTT 5 over the real broker, on loopback, with nothing of the product in
/// it. Driven by the event loop of the test's thread.
class mqtt_client_t : public QObject {
    Q_OBJECT

 public:
    struct message_t {
        QString topic;
        QByteArray payload;
        bool retained;
        /// The payload as an object; empty when it is none.
        /// Const, so that chained reads do not make references into a temporary.
        const QJsonObject json() const;
    };
    /// What the broker publishes when this client goes without a word; no topic: nothing.
    struct will_t {
        QString topic;
        QByteArray payload;
    };

    explicit mqtt_client_t(QObject* _parent = nullptr);
    ~mqtt_client_t() override;

    /// Signs in on a new connection and waits for the broker's answer: its reason code, 0 accepted,
    /// -1 none. Comes again when the broker hangs up without one, as libraries do: passwords may
    /// have to wait for their turn.
    int sign_in(quint16 _port, const QString& _username, const QString& _password,
                const will_t& _will = {});
    /// The same over the unix socket at @p _socket.
    int sign_in_local(const QString& _socket, const QString& _username, const QString& _password);
    /// Subscribes with QoS 2 and waits; whether the broker has answered.
    bool subscribe(const QString& _topic);
    /// Publishes with QoS 2 and waits for the end of the handshake: its reason code, negative when
    /// nothing was sent or nothing came back.
    int publish(const QString& _topic, const QByteArray& _payload, bool _retain = false);
    /// Drops the connection without a word.
    void drop();

    /// Waits until a message fits, among those that are here and those to come; null when none
    /// came in time.
    std::unique_ptr<message_t> wait_for(const std::function<bool(const message_t&)>& _fits,
                                        int _timeout_ms = 20000);
    /// Waits for a message on exactly this topic.
    std::unique_ptr<message_t> wait_for(const QString& _topic, int _timeout_ms = 20000);
    /// The payload of the first message on this topic, waited for; "nothing came" when none did.
    QByteArray heard(const QString& _topic);
    /// Publishes a request and gives the answer that echoes its uuid.
    const QJsonObject request(const QString& _topic, QJsonObject _payload = {});

    QList<message_t> messages() const { return received; }
    /// How many messages came on this topic.
    qsizetype count(const QString& _topic) const;
    void forget() { received.clear(); }
    bool is_connected() const { return signed_in; }

 Q_SIGNALS:
    void disconnected();

 private:
    struct library_t;
    int sign_in_at(const QByteArray& _host, quint16 _port, const QString& _username,
                   const QString& _password, const will_t& _will);
    int try_to_sign_in(const QByteArray& _host, quint16 _port, const QString& _username,
                       const QString& _password, const will_t& _will);
    int wait_for_answer(int _id);

    std::unique_ptr<library_t> library;
    QList<message_t> received;
    QHash<int, int> answers;  ///< of the broker, by the id of what was sent
    int connack = -1;
    bool signed_in = false;
};

}  // namespace kit
