#include "endpoint/mosquitto_setup.h"

#include <mosquitto.h>
#include <mqtt_protocol.h>

#include <algorithm>

#include "endpoint/mosquitto_client_t.h"

namespace comunication::mosquitto_setup {

void init_library() {
    // The library counts its users itself, but not thread-safely: once per process is enough.
    struct library_t {
        library_t() { mosquitto_lib_init(); }
        ~library_t() { mosquitto_lib_cleanup(); }
    };
    static const library_t library;
}

namespace {

int configure(mosquitto* _handle, const client_settings_t& _settings) {
    mosquitto_int_option(_handle, MOSQ_OPT_PROTOCOL_VERSION, MQTT_PROTOCOL_V5);
    mosquitto_int_option(_handle, MOSQ_OPT_TCP_NODELAY, 1);
    // With the default of 20 a client that receives and publishes QoS 2 at the same time stalls.
    mosquitto_int_option(_handle, MOSQ_OPT_RECEIVE_MAXIMUM, 65535);
    if (!_settings.username.isEmpty()) {
        mosquitto_username_pw_set(_handle, _settings.username.toUtf8().constData(),
                                  _settings.password.toUtf8().constData());
    }
    if (!_settings.ca_file.isEmpty()) {
        const int result = mosquitto_tls_set(_handle, _settings.ca_file.toLocal8Bit().constData(),
                                             nullptr, nullptr, nullptr, nullptr);
        if (result != MOSQ_ERR_SUCCESS) {
            return result;
        }
    }
    const outgoing_t& will = _settings.will;
    if (will.topic.isEmpty()) {
        return MOSQ_ERR_SUCCESS;
    }
    return mosquitto_will_set_v5(_handle, will.topic.constData(), int(will.payload.size()),
                                 will.payload.constData(), int(will.qos), will.retain, nullptr);
}

}  // namespace

int connect(mosquitto* _handle, const client_settings_t& _settings) {
    const int result = configure(_handle, _settings);
    return result == MOSQ_ERR_SUCCESS
               ? mosquitto_connect_bind_async(_handle, _settings.host.toUtf8().constData(),
                                              _settings.port, int(_settings.keep_alive.count()),
                                              nullptr)
               : result;
}

QString phrase_of(int _code) {
    QString phrase =
        QString::fromUtf8(_code < 128 ? mosquitto_strerror(_code) : mosquitto_reason_string(_code));
    // The library's own texts end with a stop, those of the protocol do not.
    while (phrase.endsWith(QLatin1Char('.'))) {
        phrase.chop(1);
    }
    return phrase;
}

quint32 subscription_of(const mosquitto_property* _properties) {
    quint32 lowest = 0;
    quint32 found = 0;
    bool skip_first = false;
    while ((_properties = mosquitto_property_read_varint(
                _properties, MQTT_PROP_SUBSCRIPTION_IDENTIFIER, &found, skip_first)) != nullptr) {
        lowest = lowest == 0 ? found : std::min(lowest, found);
        skip_first = true;
    }
    return lowest;
}

}  // namespace comunication::mosquitto_setup
