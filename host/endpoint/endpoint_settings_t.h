#pragma once

#include <QString>
#include <chrono>
#include <cstddef>

#include "endpoint/request_limits_t.h"

namespace comunication {

/// How the endpoint reaches its broker and what it may hold.
struct endpoint_settings_t {
    QString host = QStringLiteral("127.0.0.1");  ///< or the path of a unix socket
    quint16 port = 1883;                         ///< 0: a unix socket
    /// Process that must listen on the unix socket before the password is sent; 0: any.
    qint64 broker_process = 0;
    QString username;
    QString password;  ///< kept in memory only, never logged
    /// Whoever uses the same identifier throws the endpoint off the broker, so an empty one (the
    /// default) stands for one that cannot be guessed.
    QString client_id;
    QString ca_file;  ///< certificate authorities (PEM); empty: no TLS
    /// Retained {"state":"online"} or {"state":"offline"}; empty: not told.
    QString connection_topic;
    bool tells_bus = false;  ///< whether the connection message says if the bus is there

    std::chrono::milliseconds reconnect_shortest{200};
    std::chrono::milliseconds reconnect_longest{30'000};
    std::chrono::milliseconds connect_timeout{10'000};  ///< until the broker has answered
    std::chrono::milliseconds stop_timeout{1'000};      ///< to send what is queued at a stop
    std::chrono::seconds keep_alive{15};                ///< 5 s or more

    request_limits_t requests;
    std::size_t packet_bytes = 0;  ///< the broker takes no larger message; 0: no limit
    /// Waiting messages; states above it are dropped. Some portions of elements for 100 users.
    std::size_t queue_messages = 65'536;
    std::size_t queue_bytes = 256u * 1024 * 1024;  ///< topics and payloads of these
};

}  // namespace comunication
