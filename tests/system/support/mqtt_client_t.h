#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>

namespace support {

/// An API user's MQTT client for tests: MQTT 5 over the real broker, on loopback. Network traffic
/// runs on a thread of its own; signals and messages() belong to the test's thread.
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

    explicit mqtt_client_t(QObject* _parent = nullptr);
    ~mqtt_client_t() override;

    /// Signs in and waits for the broker's answer: its reason code, 0 accepted, -1 none in time.
    int sign_in(quint16 _port, const QString& _username, const QString& _password);
    /// Subscribes with QoS 2 and waits for the acknowledgement.
    bool subscribe(const QString& _topic);
    /// Publishes with QoS 2 and waits for the end of the handshake: its reason code.
    int publish(const QString& _topic, const QByteArray& _payload, bool _retain = false);

    /// Waits until a message fits, among those that are here and those to come; null when none
    /// came in time.
    std::unique_ptr<message_t> wait_for(const std::function<bool(const message_t&)>& _fits,
                                        int _timeout_ms = 20000);
    /// Waits for a message on exactly this topic.
    std::unique_ptr<message_t> wait_for(const QString& _topic, int _timeout_ms = 20000);
    /// Publishes a request and gives the answer that echoes its uuid.
    const QJsonObject request(const QString& _topic, QJsonObject _payload = {});

    QList<message_t> messages() const { return received; }
    void forget() { received.clear(); }
    bool is_connected() const { return signed_in; }

 Q_SIGNALS:
    void connack(int _reason);
    void suback(int _id);
    void puback(int _id, int _reason);
    void message();
    void disconnected();

 private:
    struct library_t;
    void take(const message_t& _message);

    std::unique_ptr<library_t> library;
    QList<message_t> received;
    bool signed_in = false;
};

}  // namespace support
