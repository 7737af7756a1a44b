#pragma once

#include <QString>

struct mosquitto;
struct mqtt5__property;

namespace comunication {

struct client_settings_t;

/// What a connection of libmosquitto is told before it begins.
namespace mosquitto_setup {

/// Must run before anything else of the library. Any thread; repeated calls do nothing.
void init_library();

/// Takes over options, credentials, TLS and last will, and begins to connect. A code of the
/// library, 0: done.
int connect(mosquitto* _handle, const client_settings_t& _settings);

/// What a code means, of the library or (128 and up) of the protocol. One phrase.
QString phrase_of(int _code);

/// The lowest subscription identifier among the properties of a message; 0: none.
quint32 subscription_of(const mqtt5__property* _properties);

}  // namespace mosquitto_setup
}  // namespace comunication
