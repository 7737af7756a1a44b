#pragma once

#include "endpoint/endpoint_settings_t.h"
#include "endpoint/mosquitto_client_t.h"

namespace comunication {

/// How the endpoint of these settings connects, but for the last will.
client_settings_t connection_of(const endpoint_settings_t& _settings);

}  // namespace comunication
