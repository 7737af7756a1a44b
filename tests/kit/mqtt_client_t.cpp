#include "kit/mqtt_client_t.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QSocketNotifier>
#include <QTimer>
#include <QUuid>
#include <algorithm>
#include <cerrno>

#include "kit/wait_until.h"

namespace kit {

namespace {

constexpr int answer_timeout_ms = 20000;
constexpr int unanswered = -2;  ///< the broker has hung up without a word

void init_library_once() {
    static const int result = mosquitto_lib_init();
    Q_UNUSED(result);
}

}  // namespace

/// The connection of the library and what wakes it.
struct mqtt_client_t::library_t {
    explicit library_t(mqtt_client_t* _client);
    ~library_t() { mosquitto_destroy(handle); }
    Q_DISABLE_COPY_MOVE(library_t)

    /// After every call into the library: listens on its socket.
    void watch();
    void read();
    void set_callbacks();
    static mqtt_client_t* of(void* _library) { return static_cast<library_t*>(_library)->client; }

    mqtt_client_t* const client;
    mosquitto* const handle;
    std::unique_ptr<QSocketNotifier> reader;
    std::unique_ptr<QSocketNotifier> writer;
    QTimer housekeeping;
};

mqtt_client_t::library_t::library_t(mqtt_client_t* _client)
    : client(_client),
      handle(mosquitto_new(("test-" + QUuid::createUuid().toByteArray(QUuid::Id128)).constData(),
                           true, this)) {
    mosquitto_int_option(handle, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(handle, MOSQ_OPT_TCP_NODELAY, 1);
    mosquitto_int_option(handle, MOSQ_OPT_RECEIVE_MAXIMUM, 65535);
    set_callbacks();
    QObject::connect(&housekeeping, &QTimer::timeout, &housekeeping, [this]() {
        mosquitto_loop_misc(handle);
        watch();
    });
    housekeeping.start(500);
}

void mqtt_client_t::library_t::watch() {
    const int socket = mosquitto_socket(handle);
    if (socket < 0) {
        for (auto* notifier : {&reader, &writer}) {
            if (*notifier) {
                // It may be the one whose signal is running.
                (*notifier)->setEnabled(false);
                notifier->release()->deleteLater();
            }
        }
        return;
    }
    if (!reader) {
        reader = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
        writer = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
        QObject::connect(reader.get(), &QSocketNotifier::activated, &housekeeping,
                         [this]() { read(); });
        QObject::connect(writer.get(), &QSocketNotifier::activated, &housekeeping, [this]() {
            mosquitto_loop_write(handle, 1);
            watch();
        });
    }
    writer->setEnabled(mosquitto_want_write(handle));
}

void mqtt_client_t::library_t::read() {
    for (int packet = 0; packet < 64; ++packet) {
        errno = 0;
        if (mosquitto_loop_read(handle, 1) != MOSQ_ERR_SUCCESS || errno == EAGAIN) {
            break;
        }
    }
    watch();
}

void mqtt_client_t::library_t::set_callbacks() {
    mosquitto_connect_v5_callback_set(
        handle, [](mosquitto*, void* _self, int _reason, int, const mosquitto_property*) {
            of(_self)->connack = _reason;
            of(_self)->signed_in = _reason == 0;
        });
    mosquitto_disconnect_v5_callback_set(
        handle, [](mosquitto*, void* _self, int, const mosquitto_property*) {
            of(_self)->signed_in = false;
            Q_EMIT of(_self)->disconnected();
        });
    mosquitto_subscribe_v5_callback_set(
        handle, [](mosquitto*, void* _self, int _id, int, const int*, const mosquitto_property*) {
            of(_self)->answers.insert(_id, 0);
        });
    mosquitto_publish_v5_callback_set(
        handle, [](mosquitto*, void* _self, int _id, int _reason, const mosquitto_property*) {
            of(_self)->answers.insert(_id, _reason);
        });
    mosquitto_message_v5_callback_set(
        handle,
        [](mosquitto*, void* _self, const mosquitto_message* _message, const mosquitto_property*) {
            of(_self)->received.append(
                {QString::fromUtf8(_message->topic),
                 QByteArray(static_cast<const char*>(_message->payload), _message->payloadlen),
                 _message->retain});
        });
}

const QJsonObject mqtt_client_t::message_t::json() const {
    return QJsonDocument::fromJson(payload).object();
}

mqtt_client_t::mqtt_client_t(QObject* _parent) : QObject(_parent) {
    init_library_once();
}

mqtt_client_t::~mqtt_client_t() {
    if (library) {
        mosquitto_disconnect(library->handle);
    }
}

int mqtt_client_t::sign_in(quint16 _port, const QString& _username, const QString& _password,
                           const will_t& _will) {
    return sign_in_at("127.0.0.1", _port, _username, _password, _will);
}

int mqtt_client_t::sign_in_local(const QString& _socket, const QString& _username,
                                 const QString& _password) {
    return sign_in_at(_socket.toLocal8Bit(), 0, _username, _password, {});
}

int mqtt_client_t::sign_in_at(const QByteArray& _host, quint16 _port, const QString& _username,
                              const QString& _password, const will_t& _will) {
    const QDeadlineTimer deadline(answer_timeout_ms);
    int code = unanswered;
    while (code == unanswered && !deadline.hasExpired()) {
        code = try_to_sign_in(_host, _port, _username, _password, _will);
    }
    return code == unanswered ? -1 : code;
}

int mqtt_client_t::try_to_sign_in(const QByteArray& _host, quint16 _port, const QString& _username,
                                  const QString& _password, const will_t& _will) {
    drop();
    library = std::make_unique<library_t>(this);
    if (!_username.isEmpty()) {
        mosquitto_username_pw_set(library->handle, _username.toUtf8().constData(),
                                  _password.toUtf8().constData());
    }
    if (!_will.topic.isEmpty()) {
        mosquitto_will_set_v5(library->handle, _will.topic.toUtf8().constData(),
                              static_cast<int>(_will.payload.size()), _will.payload.constData(), 2,
                              false, nullptr);
    }
    if (mosquitto_connect_bind_v5(library->handle, _host.constData(), _port, 60, nullptr,
                                  nullptr) != MOSQ_ERR_SUCCESS) {
        return -1;
    }
    library->watch();
    wait_until([this]() { return connack >= 0 || mosquitto_socket(library->handle) < 0; },
               answer_timeout_ms);
    return connack >= 0 ? connack : unanswered;
}

void mqtt_client_t::drop() {
    library.reset();
    answers.clear();
    connack = -1;
    signed_in = false;
}

int mqtt_client_t::wait_for_answer(int _id) {
    library->watch();
    wait_until([this, _id]() { return answers.contains(_id) || !signed_in; }, answer_timeout_ms);
    return answers.contains(_id) ? answers.take(_id) : -1;
}

bool mqtt_client_t::subscribe(const QString& _topic) {
    int id = 0;
    return signed_in &&
           mosquitto_subscribe(library->handle, &id, _topic.toUtf8().constData(), 2) == 0 &&
           wait_for_answer(id) >= 0;
}

int mqtt_client_t::publish(const QString& _topic, const QByteArray& _payload, bool _retain) {
    if (!signed_in) {
        return -MOSQ_ERR_NO_CONN;
    }
    int id = 0;
    const int sent = mosquitto_publish_v5(library->handle, &id, _topic.toUtf8().constData(),
                                          static_cast<int>(_payload.size()), _payload.constData(),
                                          2, _retain, nullptr);
    return sent == MOSQ_ERR_SUCCESS ? wait_for_answer(id) : -sent;
}

std::unique_ptr<mqtt_client_t::message_t> mqtt_client_t::wait_for(
    const std::function<bool(const message_t&)>& _fits, int _timeout_ms) {
    std::unique_ptr<message_t> found;
    qsizetype looked_at = 0;
    wait_until(
        [&]() {
            for (; looked_at < received.size() && !found; ++looked_at) {
                if (_fits(received.at(looked_at))) {
                    found = std::make_unique<message_t>(received.at(looked_at));
                }
            }
            return found != nullptr;
        },
        _timeout_ms);
    return found;
}

std::unique_ptr<mqtt_client_t::message_t> mqtt_client_t::wait_for(const QString& _topic,
                                                                  int _timeout_ms) {
    return wait_for([&_topic](const message_t& candidate) { return candidate.topic == _topic; },
                    _timeout_ms);
}

QByteArray mqtt_client_t::heard(const QString& _topic) {
    const auto message = wait_for(_topic);
    return message ? message->payload : QByteArray("nothing came");
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

qsizetype mqtt_client_t::count(const QString& _topic) const {
    return std::count_if(received.cbegin(), received.cend(),
                         [&_topic](const message_t& _one) { return _one.topic == _topic; });
}

}  // namespace kit
