#pragma once

#include <QList>

#include "endpoint/mosquitto_client_t.h"
#include "unit/host/broker/wait_until.h"

/// A client of the broker that writes down what it gets and waits for answers.
class mqtt_user_t {
 public:
    using qos_t = comunication::utility::qos_t;

    struct message_t {
        QString topic;
        QByteArray payload;
        bool retain;
    };

    mqtt_user_t() {
        using client_t = comunication::mosquitto_client_t;
        QObject::connect(&client, &client_t::opened, &client, [this]() { opened = true; });
        QObject::connect(&client, &client_t::closed, &client,
                         [this](const QString& _reason, bool _refused) {
                             closed = true;
                             refused = _refused;
                             reason = _reason;
                         });
        QObject::connect(&client, &client_t::subscribed, &client, [this]() { ++answered; });
        QObject::connect(&client, &client_t::delivered, &client, [this](int, bool _accepted) {
            ++delivered;
            accepted += _accepted ? 1 : 0;
        });
        QObject::connect(&client, &client_t::received, &client,
                         [this](const QString& _topic, const QByteArray& _payload, bool _retain) {
                             messages.append({_topic, _payload, _retain});
                         });
    }

    /// True: the broker let it in.
    bool enter(quint16 _port, const QString& _name, const QString& _password,
               const comunication::outgoing_t& _will = {}) {
        opened = closed = false;
        client.open({QStringLiteral("127.0.0.1"),
                     _port,
                     {},
                     _name,
                     _password,
                     {},
                     std::chrono::seconds(15),
                     _will});
        return wait_until([this]() { return opened || closed; }) && opened;
    }

    bool subscribe(const QString& _filter) {
        const int before = answered;
        client.subscribe(_filter, qos_t::exactly_once, 0);
        return wait_until([this, before]() { return answered > before; });
    }

    /// Publishes and waits until the broker has answered.
    bool publish(const QString& _topic, const QByteArray& _payload, bool _retain = false) {
        const int before = delivered;
        client.publish({_topic.toUtf8(), _payload, qos_t::exactly_once, _retain});
        return wait_until([this, before]() { return delivered > before; });
    }

    /// Waits for a message on @p _topic and gives its payload.
    QByteArray wait_for(const QString& _topic) {
        const message_t* found = nullptr;
        const auto look = [this, &_topic, &found]() {
            for (const message_t& message : messages) {
                found = message.topic == _topic ? &message : found;
            }
            return found != nullptr;
        };
        return wait_until(look) ? found->payload : QByteArray("nothing came");
    }

    int count(const QString& _topic) const {
        int found = 0;
        for (const message_t& message : messages) {
            found += message.topic == _topic ? 1 : 0;
        }
        return found;
    }

    comunication::mosquitto_client_t client;
    QList<message_t> messages;
    bool opened = false;
    bool closed = false;
    bool refused = false;
    QString reason;
    int answered = 0;
    int delivered = 0;
    int accepted = 0;
};
