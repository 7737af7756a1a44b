#pragma once

#include <QString>

namespace accounts {

/// What happened at the broker's door, the same by the same in one.
struct broker_event_t {
    QString kind;  ///< "signed-in", "departed", "failed", "unchecked", "refused", "write-refused",
                   ///< "subscribe-refused"
    qint64 count = 0;
    qint64 first = 0;  ///< seconds since 1970
    qint64 last = 0;
    QString user;     ///< as the client gave it, if nobody was signed in
    QString client;   ///< identifier
    QString address;  ///< the path of the socket on the unix socket
    QString detail;   ///< a topic, or why

    bool operator==(const broker_event_t&) const = default;
};

}  // namespace accounts
