#include "endpoint/endpoint_connection.h"

#include "base/random_hex.h"

namespace comunication {

namespace {

QString unguessable_id() {
    return QStringLiteral("torlan-") + base::random_hex();
}

}  // namespace

client_settings_t connection_of(const endpoint_settings_t& _settings) {
    client_settings_t made;
    made.host = _settings.host;
    made.port = _settings.port;
    made.client_id = _settings.client_id.isEmpty() ? unguessable_id() : _settings.client_id;
    made.username = _settings.username;
    made.password = _settings.password;
    made.ca_file = _settings.ca_file;
    made.keep_alive = _settings.keep_alive;
    made.process = _settings.broker_process;
    return made;
}

outgoing_t connection_message(const endpoint_settings_t& _settings, const QByteArray& _word,
                              bool _bus_online) {
    QByteArray text = "{\"state\":\"" + _word + '"';
    if (_settings.tells_bus) {
        const bool is_there = _bus_online && _word == "online";
        text += QByteArray(",\"bus\":\"") + (is_there ? "online" : "offline") + '"';
    }
    return {_settings.connection_topic.toUtf8(), text + '}', utility::qos_t::at_least_once, true};
}

}  // namespace comunication
