#pragma once

#include <QObject>
#include <QSet>
#include <QTimer>

#include "base/result_t.h"
#include "broker/forbidden_topics_t.h"
#include "endpoint/mosquitto_client_t.h"

namespace broker {

/// What the check needs to know of the broker.
struct rights_check_settings_t {
    QString host = QStringLiteral("127.0.0.1");
    quint16 port = 1883;
    QString ca_file;  ///< empty: no TLS
    QString host_account;
    QString host_password;
    QString host_socket;        ///< path, for the host's account
    qint64 broker_process = 0;  ///< which listens there
    QString probe_account;      ///< an account with the rights of an API user and no other use
    QString probe_password;
    QString connection_topic;                   ///< which API users may read
    std::chrono::milliseconds timeout{10'000};  ///< for the verdict, and again for tidying up
};

/// Tries what an API user must not be able to do.
///
/// A broker may grant a subscription or acknowledge a message and filter later, so deliveries are
/// what counts: forbidden messages first, then a permitted one as a fence. Whatever arrives
/// before the fence was not filtered. Run it while no driver is started: the probe's permitted
/// request reaches whoever listens to requests.
class broker_rights_check_t : public QObject {
    Q_OBJECT

 public:
    explicit broker_rights_check_t(const rights_check_settings_t& _settings,
                                   QObject* _parent = nullptr);
    ~broker_rights_check_t() override;

    /// finished() follows, once.
    void start();

    /// start(), then handles events until the result is there.
    base::result_t run();

 Q_SIGNALS:
    /// Not ok: the first thing that an API user could do, or why it could not be found out.
    void finished(const base::result_t& result);

 private:
    enum class stage_t {
        preparing,  ///< the host reads everything, and a retained message lies on the broker
        probing,
        fenced,  ///< the probe has sent what it must not, and its fence behind it
        ending,  ///< the verdict stands, what was retained is being taken back
        over,    ///< and was told
    };

    void set_up_connections();
    void on_limit();
    void on_host_subscribed(bool _accepted);
    void on_host_delivered(int _id);
    void on_probe_subscribed();
    void on_host_received(const QString& _topic, const QByteArray& _payload);
    void on_probe_received(const QString& _topic);
    void on_closed(const QString& _who, const QString& _reason);
    void send(comunication::mosquitto_client_t& _client, const QString& _topic, bool _retain);
    void meet_fence(bool& _fence);
    void fail(const QString& _sentence);
    void end(const base::result_t& _verdict);
    void conclude();

    const rights_check_settings_t settings;
    const QString token;  ///< marks the messages of this check
    const QString own;    ///< the probe's part of the tree
    const QString other;  ///< another user's
    const forbidden_topics_t forbidden;
    QTimer limit;
    comunication::mosquitto_client_t host;
    comunication::mosquitto_client_t probe;
    comunication::mosquitto_client_t anonymous;
    stage_t stage = stage_t::preparing;
    int awaited = 0;           ///< answers to the probe's subscriptions
    bool host_fence = false;   ///< the host has seen the probe's permitted message
    bool probe_fence = false;  ///< the other way round
    bool anonymous_refused = false;
    QSet<int> clearing;      ///< the host's messages that take back what was retained
    base::result_t failure;  ///< the first one
    base::result_t verdict;
};

}  // namespace broker
