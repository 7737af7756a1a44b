#pragma once

#include <QtGlobal>

namespace bus {

/// What happened on the bus since its driver was started.
struct bus_counters_t {
    quint64 received = 0;
    quint64 sent = 0;      ///< values and answers that went out
    quint64 asked = 0;     ///< questions that went out
    quint64 replaced = 0;  ///< by a newer value before they were sent
    quint64 dropped = 0;   ///< writes: no link, or the queue was full
    quint64 refused = 0;   ///< writes: no value of the type
    quint64 unknown = 0;   ///< telegrams to addresses that nobody listens to
    quint64 undecodable = 0;
    quint64 malformed = 0;  ///< no group telegrams at all
    quint64 links = 0;      ///< times that the link came up
};

}  // namespace bus
