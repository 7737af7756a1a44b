#pragma once

namespace comunication::utility {

/// MQTT quality of service.
enum class qos_t { at_most_once = 0, at_least_once = 1, exactly_once = 2 };

}  // namespace comunication::utility
