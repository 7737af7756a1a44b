#include "system/support/mqtt_client_t.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <QEventLoop>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QTimer>
#include <QUuid>
#include <algorithm>

namespace support {

namespace {

/// Runs the event loop until @p _done, asked after each of @p _signal's emissions, holds.
template <class Sender, class Signal, class Done>
bool wait_until(Sender* _sender, Signal _signal, int _timeout_ms, const Done& _done) {
    if (_done()) {
        return true;
    }
    QEventLoop loop;
    bool held = false;
    QObject::connect(_sender, _signal, &loop, [&]() {
        held = _done();
        if (held) {
            loop.quit();
        }
    });
    QTimer::singleShot(_timeout_ms, &loop, &QEventLoop::quit);
    loop.exec();
    return held;
}

void init_library_once() {
    static const int result = mosquitto_lib_init();
    Q_UNUSED(result);
}

}  // namespace

struct mqtt_client_t::library_t {
    mosquitto* handle = nullptr;
    mqtt_client_t* client = nullptr;

    // The callbacks run on the library's thread; everything goes on in the client's.
    template <class Call>
    static void post(void* _self, const Call& _call) {
        mqtt_client_t* client = static_cast<library_t*>(_self)->client;
        QMetaObject::invokeMethod(
            client, [client, _call]() { _call(client); }, Qt::QueuedConnection);
    }

    static void on_connect(mosquitto*, void* _self, int _reason, int, const mosquitto_property*) {
        post(_self, [_reason](mqtt_client_t* to) {
            to->signed_in = _reason == 0;
            Q_EMIT to->connack(_reason);
        });
    }
    static void on_disconnect(mosquitto*, void* _self, int, const mosquitto_property*) {
        post(_self, [](mqtt_client_t* to) {
            to->signed_in = false;
            Q_EMIT to->disconnected();
        });
    }
    static void on_subscribe(mosquitto*, void* _self, int _id, int, const int*,
                             const mosquitto_property*) {
        post(_self, [_id](mqtt_client_t* to) { Q_EMIT to->suback(_id); });
    }
    static void on_publish(mosquitto*, void* _self, int _id, int _reason,
                           const mosquitto_property*) {
        post(_self, [_id, _reason](mqtt_client_t* to) { Q_EMIT to->puback(_id, _reason); });
    }
    static void on_message(mosquitto*, void* _self, const mosquitto_message* _message,
                           const mosquitto_property*) {
        const message_t message{
            QString::fromUtf8(_message->topic),
            QByteArray(static_cast<const char*>(_message->payload), _message->payloadlen),
            _message->retain};
        post(_self, [message](mqtt_client_t* to) { to->take(message); });
    }
};

const QJsonObject mqtt_client_t::message_t::json() const {
    return QJsonDocument::fromJson(payload).object();
}

mqtt_client_t::mqtt_client_t(QObject* _parent)
    : QObject(_parent), library(std::make_unique<library_t>()) {
    init_library_once();
    library->client = this;
    const QByteArray id = "test-" + QUuid::createUuid().toByteArray(QUuid::Id128);
    library->handle = mosquitto_new(id.constData(), true, library.get());
    mosquitto_int_option(library->handle, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(library->handle, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_int_option(library->handle, MOSQ_OPT_RECEIVE_MAXIMUM, 65535);
    mosquitto_connect_v5_callback_set(library->handle, library_t::on_connect);
    mosquitto_disconnect_v5_callback_set(library->handle, library_t::on_disconnect);
    mosquitto_subscribe_v5_callback_set(library->handle, library_t::on_subscribe);
    mosquitto_publish_v5_callback_set(library->handle, library_t::on_publish);
    mosquitto_message_v5_callback_set(library->handle, library_t::on_message);
}

mqtt_client_t::~mqtt_client_t() {
    // Not by force: a thread that is cancelled leaves what it just allocated behind.
    mosquitto_disconnect(library->handle);
    mosquitto_loop_stop(library->handle, false);
    mosquitto_destroy(library->handle);
}

void mqtt_client_t::take(const message_t& _message) {
    received.append(_message);
    Q_EMIT message();
}

int mqtt_client_t::sign_in(quint16 _port, const QString& _username, const QString& _password) {
    if (!_username.isEmpty()) {
        mosquitto_username_pw_set(library->handle, _username.toUtf8().constData(),
                                  _password.toUtf8().constData());
    }
    QSignalSpy spy(this, &mqtt_client_t::connack);
    mosquitto_connect_bind_v5(library->handle, "127.0.0.1", _port, 60, nullptr, nullptr);
    mosquitto_loop_start(library->handle);
    return !spy.isEmpty() || spy.wait(20000) ? spy.first().first().toInt() : -1;
}

bool mqtt_client_t::subscribe(const QString& _topic) {
    int id = 0;
    QSignalSpy spy(this, &mqtt_client_t::suback);
    if (mosquitto_subscribe(library->handle, &id, _topic.toUtf8().constData(), 2) != 0) {
        return false;
    }
    return wait_until(this, &mqtt_client_t::suback, 20000, [&spy, id]() {
        return std::any_of(spy.begin(), spy.end(),
                           [id](const QList<QVariant>& a) { return a.first().toInt() == id; });
    });
}

int mqtt_client_t::publish(const QString& _topic, const QByteArray& _payload, bool _retain) {
    int id = 0;
    int reason = -1;
    QSignalSpy spy(this, &mqtt_client_t::puback);
    const int sent = mosquitto_publish_v5(library->handle, &id, _topic.toUtf8().constData(),
                                          static_cast<int>(_payload.size()), _payload.constData(),
                                          2, _retain, nullptr);
    if (sent != MOSQ_ERR_SUCCESS) {
        return -sent;
    }
    wait_until(this, &mqtt_client_t::puback, 20000, [&]() {
        for (const QList<QVariant>& acknowledged : std::as_const(spy)) {
            if (acknowledged.first().toInt() == id) {
                reason = acknowledged.at(1).toInt();
            }
        }
        return reason >= 0;
    });
    return reason;
}

std::unique_ptr<mqtt_client_t::message_t> mqtt_client_t::wait_for(
    const std::function<bool(const message_t&)>& _fits, int _timeout_ms) {
    std::unique_ptr<message_t> found;
    wait_until(this, &mqtt_client_t::message, _timeout_ms, [&]() {
        for (const message_t& candidate : std::as_const(received)) {
            if (_fits(candidate)) {
                found = std::make_unique<message_t>(candidate);
                return true;
            }
        }
        return false;
    });
    return found;
}

std::unique_ptr<mqtt_client_t::message_t> mqtt_client_t::wait_for(const QString& _topic,
                                                                  int _timeout_ms) {
    return wait_for([&_topic](const message_t& candidate) { return candidate.topic == _topic; },
                    _timeout_ms);
}

const QJsonObject mqtt_client_t::request(const QString& _topic, QJsonObject _payload) {
    const QString uuid = QUuid::createUuid().toString(QUuid::Id128);
    _payload.insert(QStringLiteral("uuid"), uuid);
    publish(_topic, QJsonDocument(_payload).toJson(QJsonDocument::Compact));
    const auto answer = wait_for([&](const message_t& candidate) {
        // A client that subscribes its whole tree hears its own request, too.
        return candidate.topic != _topic && candidate.json().value(QLatin1String("uuid")) == uuid;
    });
    return answer ? answer->json() : QJsonObject();
}

}  // namespace support
