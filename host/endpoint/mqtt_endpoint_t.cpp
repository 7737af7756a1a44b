#include "endpoint/mqtt_endpoint_t.h"

#include <QMetaMethod>
#include <utility>

#include "comunication/api_topics.h"
#include "endpoint/endpoint_connection.h"
#include "endpoint/incoming_t.h"
#include "endpoint/request_rules.h"
#include "logs/log_line.h"

namespace comunication {

namespace {

constexpr const char* source = "host/endpoint/mqtt_endpoint_t";

}  // namespace

mqtt_endpoint_t::mqtt_endpoint_t(const endpoint_settings_t& _settings, QObject* _parent)
    : protoserver_t(_parent),
      settings(_settings),
      connection(connection_of(_settings)),
      client(this),
      sender(client, counts, _settings.queue_messages, _settings.queue_bytes, sender_listener()),
      publisher(sender, counts, _settings.packet_bytes),
      gate(
          _settings.requests, counts, [this]() { return sender.is_loaded(); }, this),
      backoff(_settings.reconnect_shortest, _settings.reconnect_longest),
      reconnect(this),
      limit(this) {
    reconnect.setSingleShot(true);
    limit.setSingleShot(true);
    set_up_connections();
}

mqtt_endpoint_t::~mqtt_endpoint_t() {
    client.abandon();
}

message_sender_t::listener_t mqtt_endpoint_t::sender_listener() {
    return {[this](quint64 _mark, bool _complete) { Q_EMIT marked(_mark, _complete); },
            [this]() { Q_EMIT states_lost(); }};
}

void mqtt_endpoint_t::set_up_connections() {
    connect(&reconnect, &QTimer::timeout, this, [this]() { open(); });
    connect(&limit, &QTimer::timeout, this, [this]() {
        if (state == state_t::stopping) {
            client.close(true);
            end_stop();
        } else {
            client.abandon();
            on_closed(QStringLiteral("No answer within the time limit"), false);
        }
    });
    connect(&client, &mosquitto_client_t::opened, this, [this]() { on_opened(); });
    connect(&client, &mosquitto_client_t::closed, this, &mqtt_endpoint_t::on_closed);
    connect(&client, &mosquitto_client_t::received, this, &mqtt_endpoint_t::on_received);
    connect(&client, &mosquitto_client_t::subscribed, this, &mqtt_endpoint_t::on_subscribed);
    connect(&client, &mosquitto_client_t::delivered, this, [this](int, bool _accepted) {
        sender.on_delivered(_accepted);
        gate.pass_on();
        finish_stop();
    });
    connect(&gate, &request_gate_t::passed, this, &mqtt_endpoint_t::pass_request);
    connect(&gate, &request_gate_t::refused, this,
            [this](const QString& _topic, const QJsonObject& _answer) {
                publisher.refuse(_topic, _answer);
            });
    connect(&gate, &request_gate_t::turned_away, this,
            [this](const request_t& _request, const QJsonObject& _answer) {
                tell(exchange_t{_request.levels, _request.topic, {}, _answer, true});
            });
}

void mqtt_endpoint_t::start() {
    if (state != state_t::stopped) {
        return;
    }
    state = state_t::connecting;
    open();
}

void mqtt_endpoint_t::set_broker(qint64 _process, const QString& _password) {
    connection.process = _process;
    connection.password = _password;
    if (state == state_t::connecting && reconnect.isActive()) {
        reconnect.stop();
        open();
    }
}

void mqtt_endpoint_t::set_bus(bool _online) {
    bus_online = _online;
    const bool is_told = state == state_t::subscribing || state == state_t::connected;
    if (is_told && settings.tells_bus && !settings.connection_topic.isEmpty()) {
        sender.send(connection_message("online"));
    }
}

void mqtt_endpoint_t::set_connection_topic(const QString& _topic) {
    const QByteArray former = settings.connection_topic.toUtf8();
    settings.connection_topic = _topic;
    if (!is_online()) {
        return;
    }
    if (!former.isEmpty()) {
        sender.send({former, {}, utility::qos_t::at_least_once, true});
    }
    if (!_topic.isEmpty()) {
        sender.send(connection_message("online"));
    }
}

void mqtt_endpoint_t::mark(quint64 _mark) {
    sender.mark(_mark);
}

void mqtt_endpoint_t::stop() {
    if (state == state_t::stopping) {
        return;
    }
    const bool was_online = is_online();
    state = state_t::stopping;
    reconnect.stop();
    if (!was_online) {
        end_stop();
        return;
    }
    limit.start(settings.stop_timeout);
    if (!settings.connection_topic.isEmpty()) {
        sender.send(connection_message("offline"));
    }
    finish_stop();
}

void mqtt_endpoint_t::finish_stop() {
    if (state == state_t::stopping && sender.is_idle()) {
        client.close(false);
    }
}

void mqtt_endpoint_t::end_stop() {
    if (state != state_t::stopping) {
        return;
    }
    client.abandon();
    sender.close();
    limit.stop();
    state = state_t::stopped;
    Q_EMIT stopped();
}

void mqtt_endpoint_t::open() {
    connection.will =
        settings.connection_topic.isEmpty() ? outgoing_t() : connection_message("offline");
    limit.start(settings.connect_timeout);
    client.open(connection);
}

void mqtt_endpoint_t::on_opened() {
    state = state_t::subscribing;
    sender.open();
    publisher.open();
    told_retained = false;
    request_id =
        client.subscribe(api_topics::request_filter, utility::qos_t::exactly_once,
                         mosquitto_client_t::no_local | mosquitto_client_t::retain_as_published);
    if (wants_status) {
        subscription_status_api(utility::subscribe_t::subscribe);
    }
    if (!settings.connection_topic.isEmpty()) {
        sender.send(connection_message("online"));
    }
}

void mqtt_endpoint_t::on_subscribed(int _id, bool _accepted) {
    if (_id != request_id || state != state_t::subscribing) {
        return;
    }
    if (!_accepted) {
        Q_EMIT refused(QStringLiteral("The subscription of requests was refused"));
        client.close(false);
        return;
    }
    limit.stop();
    backoff.reset();
    told_outage.clear();
    state = state_t::connected;
    const bool again = std::exchange(ever_connected, true);
    counts.reconnects += again ? 1 : 0;
    Q_EMIT connected(again);
}

void mqtt_endpoint_t::on_closed(const QString& _reason, bool _refused) {
    limit.stop();
    sender.close();
    if (state == state_t::stopping) {
        end_stop();
        return;
    }
    const state_t before = std::exchange(state, state_t::connecting);
    log_outage(_reason);
    reconnect.start(backoff.next());
    if (_refused) {
        Q_EMIT refused(_reason);
    }
    if (before == state_t::connected) {
        Q_EMIT disconnected();
    }
}

void mqtt_endpoint_t::log_outage(const QString& _reason) {
    if (_reason == told_outage) {
        return;
    }
    told_outage = _reason;
    const QString where = settings.port == 0
                              ? settings.host
                              : settings.host + QLatin1Char(':') + QString::number(settings.port);
    ::utility::log_line(QStringLiteral("No connection to the broker at %1: %2").arg(where, _reason),
                        2, "log_outage", source, __LINE__);
}

void mqtt_endpoint_t::set_enable_api_message(bool _enable) {
    enabled = _enable;
    if (!enabled) {
        gate.clear();
    }
}

void mqtt_endpoint_t::subscription_status_api(utility::subscribe_t _subscribe) {
    wants_status = _subscribe == utility::subscribe_t::subscribe;
    if (is_online()) {
        // Once per connection is what QoS 1 gives as well, and with QoS 2 the broker searches
        // what is in flight for each half: 25 s instead of 0.2 s for 100,000 retained messages.
        sender.send({.topic = api_topics::status_filter.toUtf8(),
                     .payload = {},
                     .qos = utility::qos_t::at_least_once,
                     .kind = wants_status ? outgoing_t::kind_t::subscribe
                                          : outgoing_t::kind_t::unsubscribe});
    }
}

void mqtt_endpoint_t::show_states_of(const QString& _user) {
    if (!is_online()) {
        return;
    }
    const QByteArray filter = api_topics::status_filter_of(_user).toUtf8();
    // What it finds is on its way by the time that it ends.
    for (const auto kind : {outgoing_t::kind_t::subscribe, outgoing_t::kind_t::unsubscribe}) {
        sender.send(
            {.topic = filter, .payload = {}, .qos = utility::qos_t::at_least_once, .kind = kind});
    }
}

void mqtt_endpoint_t::on_received(const QString& _topic, const QByteArray& _payload, bool _retain,
                                  quint32 _subscription) {
    ++counts.received;
    const incoming_t message = incoming_t::judge(_topic, _payload, _retain, enabled);
    const api_topic_t& levels = message.levels;
    if (levels.is_request() && _subscription == message_sender_t::status_subscription) {
        // Requests of a client that calls itself "status" fit both filters and come twice.
        return;
    }
    switch (message.action) {
        case incoming_t::action_t::clear:
            clear_retained_request(_topic);
            break;
        case incoming_t::action_t::take:
            gate.take({levels, _topic, _payload});
            break;
        case incoming_t::action_t::pass_on:
            Q_EMIT api_message(levels.version, levels.user, levels.client, levels.type, _topic,
                               message.payload, _retain);
            break;
        case incoming_t::action_t::ignore:
            break;
    }
}

void mqtt_endpoint_t::clear_retained_request(const QString& _topic) {
    ++counts.retained_requests_cleared;
    if (!std::exchange(told_retained, true)) {
        ::utility::log_line(
            QStringLiteral("Retained requests are taken off the broker, first: %1").arg(_topic), 3,
            "clear_retained_request", source, __LINE__);
    }
    publish_delete(_topic, utility::qos_t::exactly_once, true);
}

void mqtt_endpoint_t::pass_request(const request_t& _request, const QJsonObject& _payload) {
    const api_topic_t& levels = _request.levels;
    exchanges.pass(_request, _payload);
    Q_EMIT api_message(levels.version, levels.user, levels.client, levels.type, _request.topic,
                       _payload, false);
    if (isSignalConnected(QMetaMethod::fromSignal(&mqtt_endpoint_t::request_passed))) {
        Q_EMIT request_passed(request_rules::is_small(_request));
    } else {
        QMetaObject::invokeMethod(this, &mqtt_endpoint_t::request_done, Qt::QueuedConnection);
    }
}

void mqtt_endpoint_t::request_done() {
    tell(exchanges.done());
    gate.give_back();
}

void mqtt_endpoint_t::tell(const std::optional<exchange_t>& _exchange) {
    if (_exchange) {
        Q_EMIT exchanged(*_exchange);
    }
}

void mqtt_endpoint_t::publish(const QString& _topic, const QJsonValue& _payload,
                              utility::qos_t _qos, bool _retain, bool /*_reserved*/) {
    const QJsonValue sent = publisher.publish(_topic, _payload, _qos, _retain);
    if (!_retain) {
        tell(exchanges.answer(_topic, sent));
    }
}

void mqtt_endpoint_t::publish_delete(const QString& _topic, utility::qos_t _qos, bool _retain) {
    sender.send({_topic.toUtf8(), {}, _qos, _retain});
}

outgoing_t mqtt_endpoint_t::connection_message(const QByteArray& _word) const {
    return comunication::connection_message(settings, _word, bus_online);
}

}  // namespace comunication
