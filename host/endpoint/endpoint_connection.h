#pragma once

#include "endpoint/endpoint_settings_t.h"
#include "endpoint/mosquitto_client_t.h"

namespace comunication {

/// How the endpoint of these settings connects, but for the last will.
client_settings_t connection_of(const endpoint_settings_t& _settings);

/// Tells @p _word, "online" or "offline", under the connection topic, and whether the bus is there.
outgoing_t connection_message(const endpoint_settings_t& _settings, const QByteArray& _word,
                              bool _bus_online);

}  // namespace comunication
