#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <chrono>
#include <memory>

#include "endpoint/outgoing_queue_t.h"

namespace comunication {

/// How one connection is made.
struct client_settings_t {
    QString host;         ///< or the path of a unix socket
    quint16 port = 1883;  ///< 0: a unix socket
    QString client_id;    ///< empty: the broker gives one
    QString username;
    QString password;
    QString ca_file;                      ///< empty: no TLS
    std::chrono::seconds keep_alive{15};  ///< 5 s or more
    outgoing_t will{};                    ///< last will; an empty topic: none
    /// Process that must listen on the unix socket: another one is told nothing. 0: any.
    qint64 process = 0;
};

/// One MQTT 5 connection with a clean start, driven by the event loop of the thread that this
/// object lives in. No policy: what is lost is lost, and nothing is tried again.
///
/// The signals are emitted on that thread while the library is busy: connected slots may call
/// every operation here, but must not delete this object.
class mosquitto_client_t : public QObject {
    Q_OBJECT

 public:
    /// Options of a subscription, see the MQTT 5 subscription options.
    enum subscription_option_t { plain = 0x00, no_local = 0x04, retain_as_published = 0x08 };

    explicit mosquitto_client_t(QObject* _parent = nullptr);
    ~mosquitto_client_t() override;

    /// Begins a new connection, after abandoning a former one. opened() or closed() follows,
    /// closed() perhaps before this returns. In a slot of this object only in that of closed().
    void open(const client_settings_t& _settings);

    /// Says good-bye to the broker; closed() follows. @p _with_will: the broker publishes the
    /// last will.
    void close(bool _with_will);

    /// Drops the connection without a word and without a signal; safe in a slot of this object.
    void abandon();

    bool is_open() const;

    /// Identifier of the message, told by delivered() later; 0: refused, nothing was sent.
    int publish(const outgoing_t& _message);

    /// Asks for a subscription; subscribed() tells the broker's answer. 0: not sent.
    /// @p _subscription comes back with each of its messages; 0: none.
    int subscribe(const QString& _filter, utility::qos_t _qos, int _options,
                  quint32 _subscription = 0);
    /// False: not sent.
    bool unsubscribe(const QString& _filter);

 Q_SIGNALS:
    void opened();
    /// The connection is gone or could not be made; not after abandon(). @p _reason is one
    /// phrase without secrets; @p _refused: the broker answered and refused.
    void closed(const QString& _reason, bool _refused);
    /// @p _subscription as given to subscribe(); the lowest when several are told.
    void received(const QString& _topic, const QByteArray& _payload, bool _retain,
                  quint32 _subscription);
    /// The broker has the message, or has refused it.
    void delivered(int _id, bool _accepted);
    void subscribed(int _id, bool _accepted);

 private:
    struct private_t;
    const std::unique_ptr<private_t> d;
};

}  // namespace comunication
