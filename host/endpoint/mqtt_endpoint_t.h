#pragma once

#include <QTimer>

#include "base/backoff_t.h"
#include "comunication/protoserver_t.h"
#include "endpoint/endpoint_counters_t.h"
#include "endpoint/endpoint_settings_t.h"
#include "endpoint/exchanges_t.h"
#include "endpoint/message_sender_t.h"
#include "endpoint/mosquitto_client_t.h"
#include "endpoint/publisher_t.h"
#include "endpoint/request_gate_t.h"

namespace comunication {

/// The server's endpoint on an MQTT 5 broker.
///
/// Lives in a thread with an event loop (see endpoint_thread_t); everything but counters() is
/// called there and nothing blocks. It comes back by itself after the connection was lost; what
/// is published meanwhile is dropped and counted, since drivers publish everything again.
class mqtt_endpoint_t : public protoserver_t {
    Q_OBJECT

 public:
    explicit mqtt_endpoint_t(const endpoint_settings_t& _settings, QObject* _parent = nullptr);
    ~mqtt_endpoint_t() override;

    void publish(const QString& _topic, const QJsonValue& _payload, utility::qos_t _qos,
                 bool _retain, bool _reserved) override;
    void publish_delete(const QString& _topic, utility::qos_t _qos, bool _retain) override;
    void set_enable_api_message(bool _enable) override;
    void subscription_status_api(utility::subscribe_t _subscribe) override;

    /// Any thread.
    const endpoint_counters_t& counters() const { return counts; }

 public Q_SLOTS:
    /// Connects, and keeps connected until stop().
    void start();

    /// The broker is another process from now on and takes another password, see
    /// client_settings_t::process. What waits for the next attempt waits no longer.
    void set_broker(qint64 _process, const QString& _password);

    /// The bus is there or not; told at once. Nothing unless the settings say that there is one.
    void set_bus(bool _online);

    /// Drivers are passed what lies retained of this user's states, as by
    /// subscription_status_api().
    void show_states_of(const QString& _user);

    /// The connection's state is told there from now on, and no longer where it was. The will of a
    /// connection that is open stays where it is.
    void set_connection_topic(const QString& _topic);

    /// Sets a mark behind what was published; marked() follows, perhaps before this returns.
    void mark(quint64 _mark);

    /// Sends what is queued, tells "offline" and disconnects; bounded by the settings' stop
    /// time-out. stopped() follows, perhaps before this returns.
    void stop();

    /// The drivers have worked off one request.
    void request_done();

 Q_SIGNALS:
    /// A request was passed to the drivers by api_message; whoever is connected answers each with
    /// request_done() in turn, and no more than a few are passed on before that. @p is_small: it
    /// reads one element.
    void request_passed(bool is_small);

    /// All that was published before this mark is on the broker; not @p complete: or was lost with
    /// its connection.
    void marked(quint64 mark, bool complete);

    /// States or deletions were dropped because too many waited, and there is room again: what the
    /// broker holds is complete when everything is published once more.
    void states_lost();

    /// What became of a request; whoever listens does little and is called on this thread.
    void exchanged(const comunication::exchange_t& exchange);

    /// The broker has accepted the connection and the subscription of requests. @p again: not
    /// for the first time, so that a broker without memory has lost what was retained.
    void connected(bool again);
    void disconnected();
    /// The broker does not let the endpoint in; it tries again with increasing pauses.
    void refused(const QString& reason);
    void stopped();

 private:
    enum class state_t {
        stopped,
        connecting,   ///< an attempt is under way, or the next one is due
        subscribing,  ///< the broker has accepted the connection
        connected,    ///< and the subscription of requests: connected() was emitted
        stopping,     ///< of an accepted connection: what is queued is sent
    };

    void set_up_connections();
    bool is_online() const { return state > state_t::connecting; }
    void open();
    void on_opened();
    void on_subscribed(int _id, bool _accepted);
    void on_closed(const QString& _reason, bool _refused);
    void on_received(const QString& _topic, const QByteArray& _payload, bool _retain,
                     quint32 _subscription);
    void clear_retained_request(const QString& _topic);
    void pass_request(const request_t& _request, const QJsonObject& _payload);
    void tell(const std::optional<exchange_t>& _exchange);
    void log_outage(const QString& _reason);
    outgoing_t connection_message(const QByteArray& _word) const;
    message_sender_t::listener_t sender_listener();
    void finish_stop();
    void end_stop();

    endpoint_settings_t settings;
    client_settings_t connection;
    endpoint_counters_t counts;
    mosquitto_client_t client;
    message_sender_t sender;
    publisher_t publisher;
    request_gate_t gate;
    exchanges_t exchanges;
    base::backoff_t backoff;
    QTimer reconnect;    ///< until the next attempt
    QTimer limit;        ///< of an attempt, or of a stop
    int request_id = 0;  ///< of the pending subscription of requests
    state_t state = state_t::stopped;
    bool bus_online = false;
    bool ever_connected = false;  ///< connected() was emitted once
    bool enabled = false;         ///< api_message is emitted
    bool wants_status = false;
    bool told_retained = false;  ///< for this connection
    QString told_outage;         ///< logged last
};

}  // namespace comunication
