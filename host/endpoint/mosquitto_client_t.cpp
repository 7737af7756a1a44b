#include "endpoint/mosquitto_client_t.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <QSocketNotifier>
#include <QTimer>
#include <cerrno>

#include "endpoint/mosquitto_setup.h"
#include "endpoint/peer_judge_t.h"

namespace comunication {

namespace {

struct freed_t {
    void operator()(mosquitto* _handle) const { mosquitto_destroy(_handle); }
};

/// Of one connection.
enum class phase_t {
    idle,  ///< none
    connecting,
    open,       ///< the broker has accepted it
    ended,      ///< the library has given it up
    abandoned,  ///< free the handle as soon as no call is running
};

/// Packets read in one go before other events get their turn.
constexpr int packets_per_turn = 64;
constexpr auto housekeeping = std::chrono::milliseconds(500);

}  // namespace

struct mosquitto_client_t::private_t {
    explicit private_t(mosquitto_client_t* _self);

    /// Runs one call into the library and then brings the notifiers in line with its socket.
    template <class Call>
    int call(Call _call);
    void drop();
    void settle();
    void watch(int _socket);
    void read();
    void finish(const QString& _reason);
    void set_callbacks();
    void set_message_callbacks();
    void connect_to(const client_settings_t& _settings);

    /// There is a connection that a call may be about.
    bool is_live() const { return phase == phase_t::connecting || phase == phase_t::open; }
    static private_t* of(void* _object) { return static_cast<private_t*>(_object); }

    mosquitto_client_t* const self;
    std::unique_ptr<mosquitto, freed_t> handle;
    std::unique_ptr<QSocketNotifier> reader;
    std::unique_ptr<QSocketNotifier> writer;
    QTimer misc;
    int socket = -1;
    int depth = 0;  ///< calls into the library that are running
    phase_t phase = phase_t::idle;
    bool refused = false;  ///< the broker has refused the connection
    peer_judge_t peer;
    QString reason;  ///< why it ended
};

mosquitto_client_t::private_t::private_t(mosquitto_client_t* _self) : self(_self), misc(_self) {
    misc.setInterval(housekeeping);
    connect(&misc, &QTimer::timeout, self, [this]() {
        // Also reads: under TLS the library may hold decrypted bytes that no socket announces.
        read();
        call([this]() { return mosquitto_loop_misc(handle.get()); });
    });
}

template <class Call>
int mosquitto_client_t::private_t::call(Call _call) {
    if (!is_live()) {
        return MOSQ_ERR_NO_CONN;
    }
    ++depth;
    const int result = _call();
    --depth;
    settle();
    return result;
}

void mosquitto_client_t::private_t::settle() {
    if (depth > 0) {
        return;
    }
    if (phase == phase_t::abandoned) {
        drop();
        return;
    }
    if (phase == phase_t::ended) {
        const QString why = reason;
        const bool by_broker = refused;
        drop();
        Q_EMIT self->closed(why, by_broker);
        return;
    }
    watch(mosquitto_socket(handle.get()));
    if (writer) {
        writer->setEnabled(mosquitto_want_write(handle.get()));
    }
}

void mosquitto_client_t::private_t::drop() {
    watch(-1);
    misc.stop();
    handle.reset();
    phase = phase_t::idle;
    refused = false;
    reason.clear();
}

void mosquitto_client_t::private_t::watch(int _socket) {
    if (_socket == socket) {
        return;
    }
    socket = _socket;
    for (auto* notifier : {&reader, &writer}) {
        if (*notifier) {
            // It may be the one whose signal is running.
            (*notifier)->setEnabled(false);
            notifier->release()->deleteLater();
        }
    }
    if (socket == -1) {
        return;
    }
    reader = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    writer = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Write);
    connect(reader.get(), &QSocketNotifier::activated, self, [this]() { read(); });
    connect(writer.get(), &QSocketNotifier::activated, self,
            [this]() { call([this]() { return mosquitto_loop_write(handle.get(), 1); }); });
}

void mosquitto_client_t::private_t::read() {
    call([this]() {
        int result = MOSQ_ERR_SUCCESS;
        for (int i = 0; i < packets_per_turn && is_live(); ++i) {
            errno = 0;
            result = mosquitto_loop_read(handle.get(), 1);
            if (result != MOSQ_ERR_SUCCESS || errno == EAGAIN || errno == EWOULDBLOCK) {
                break;
            }
        }
        return result;
    });
}

void mosquitto_client_t::private_t::finish(const QString& _reason) {
    phase = phase == phase_t::abandoned ? phase : phase_t::ended;
    reason = reason.isEmpty() ? _reason : reason;
}

void mosquitto_client_t::private_t::connect_to(const client_settings_t& _settings) {
    peer.expect(_settings.process);
    reason = peer.objection(_settings.host);
    const int result = reason.isEmpty() ? mosquitto_setup::connect(handle.get(), _settings)
                                        : int(MOSQ_ERR_CONN_REFUSED);
    // From here on it would make a text of each packet, which nobody reads.
    mosquitto_log_callback_set(handle.get(), nullptr);
    if (result != MOSQ_ERR_SUCCESS || peer.is_unjudged()) {
        finish(mosquitto_setup::phrase_of(result));  // unless there is a reason
    }
}

void mosquitto_client_t::private_t::set_callbacks() {
    mosquitto* const m = handle.get();
    // The library connects and writes name and password in one call. In between it has a line for
    // the log: the connection can still be shut.
    mosquitto_log_callback_set(m, [](mosquitto* _handle, void* _object, int, const char*) {
        if (private_t* const p = of(_object); p->reason.isEmpty()) {
            p->reason = p->peer.judge(mosquitto_socket(_handle));
        }
    });
    mosquitto_connect_v5_callback_set(
        m, [](mosquitto*, void* _object, int _code, int, const mosquitto_property*) {
            private_t* const p = of(_object);
            p->refused = _code != 0;
            if (p->refused) {
                p->reason = QString::fromUtf8(mosquitto_reason_string(_code));
            } else if (p->phase == phase_t::connecting) {
                p->phase = phase_t::open;
                Q_EMIT p->self->opened();
            }
        });
    mosquitto_disconnect_v5_callback_set(
        m, [](mosquitto*, void* _object, int _code, const mosquitto_property*) {
            of(_object)->finish(mosquitto_setup::phrase_of(_code));
        });
}

void mosquitto_client_t::private_t::set_message_callbacks() {
    mosquitto* const m = handle.get();
    mosquitto_message_v5_callback_set(
        m, [](mosquitto*, void* _object, const mosquitto_message* _message,
              const mosquitto_property* _properties) {
            if (private_t* const p = of(_object); p->phase != phase_t::abandoned) {
                Q_EMIT p->self->received(
                    QString::fromUtf8(_message->topic),
                    QByteArray(static_cast<const char*>(_message->payload), _message->payloadlen),
                    _message->retain, mosquitto_setup::subscription_of(_properties));
            }
        });
    mosquitto_publish_v5_callback_set(
        m, [](mosquitto*, void* _object, int _id, int _code, const mosquitto_property*) {
            if (private_t* const p = of(_object); p->phase != phase_t::abandoned) {
                Q_EMIT p->self->delivered(_id, _code < 128);
            }
        });
    mosquitto_subscribe_v5_callback_set(m, [](mosquitto*, void* _object, int _id, int _count,
                                              const int* _granted, const mosquitto_property*) {
        if (private_t* const p = of(_object); p->phase != phase_t::abandoned) {
            Q_EMIT p->self->subscribed(_id, _count > 0 && _granted[0] < 128);
        }
    });
}

mosquitto_client_t::mosquitto_client_t(QObject* _parent)
    : QObject(_parent), d(std::make_unique<private_t>(this)) {
    mosquitto_setup::init_library();
}

mosquitto_client_t::~mosquitto_client_t() = default;

void mosquitto_client_t::open(const client_settings_t& _settings) {
    abandon();
    const QByteArray id = _settings.client_id.toUtf8();
    d->handle.reset(mosquitto_new(id.isEmpty() ? nullptr : id.constData(), true, d.get()));
    if (!d->handle) {
        Q_EMIT closed(QStringLiteral("Invalid client identifier"), false);
        return;
    }
    d->phase = phase_t::connecting;
    d->set_callbacks();
    d->set_message_callbacks();
    d->misc.start();
    d->call([this, &_settings]() {
        d->connect_to(_settings);
        return 0;
    });
}

void mosquitto_client_t::close(bool _with_will) {
    d->call([this, _with_will]() {
        return mosquitto_disconnect_v5(
            d->handle.get(),
            _with_will ? MQTT_RC_DISCONNECT_WITH_WILL_MSG : MQTT_RC_NORMAL_DISCONNECTION, nullptr);
    });
}

void mosquitto_client_t::abandon() {
    d->phase = phase_t::abandoned;
    d->settle();
}

bool mosquitto_client_t::is_open() const {
    return d->phase == phase_t::open;
}

int mosquitto_client_t::publish(const outgoing_t& _message) {
    int id = 0;
    const int result = d->call([this, &id, &_message]() {
        return mosquitto_publish_v5(d->handle.get(), &id, _message.topic.constData(),
                                    int(_message.payload.size()), _message.payload.constData(),
                                    int(_message.qos), _message.retain, nullptr);
    });
    return result == MOSQ_ERR_SUCCESS ? id : 0;
}

int mosquitto_client_t::subscribe(const QString& _filter, utility::qos_t _qos, int _options,
                                  quint32 _subscription) {
    int id = 0;
    mosquitto_property* properties = nullptr;
    if (_subscription != 0) {
        mosquitto_property_add_varint(&properties, MQTT_PROP_SUBSCRIPTION_IDENTIFIER,
                                      _subscription);
    }
    const int result = d->call([&]() {
        return mosquitto_subscribe_v5(d->handle.get(), &id, _filter.toUtf8().constData(), int(_qos),
                                      _options, properties);
    });
    mosquitto_property_free_all(&properties);
    return result == MOSQ_ERR_SUCCESS ? id : 0;
}

bool mosquitto_client_t::unsubscribe(const QString& _filter) {
    return d->call([this, &_filter]() {
        return mosquitto_unsubscribe_v5(d->handle.get(), nullptr, _filter.toUtf8().constData(),
                                        nullptr);
    }) == MOSQ_ERR_SUCCESS;
}

}  // namespace comunication
