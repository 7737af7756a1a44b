#pragma once

#include <QString>

namespace bus {

/// How the bus is reached and treated.
struct bus_settings_t {
    QString url;                    ///< "local:PATH" or "ip:HOST[:PORT]", knxd's socket
    int telegrams_per_second = 25;  ///< that are sent for writes; the medium carries about 50
    bool read = true;               ///< whether values are asked for when the link is there
};

}  // namespace bus
