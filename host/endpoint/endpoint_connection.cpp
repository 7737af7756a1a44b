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

}  // namespace comunication
