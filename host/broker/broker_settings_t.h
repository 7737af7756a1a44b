#pragma once

#include <QString>
#include <chrono>

#include "broker/port_check.h"

namespace broker {

/// How the private broker is run. It listens on 127.0.0.1 only.
struct broker_settings_t {
    quint16 port = 1883;
    quint16 websocket_port = 0;  ///< 0: no WebSockets
    /// Retained state of the host, readable by every API user; empty: none.
    QString connection_topic;
    /// The host's own account, which may read and write everything. The '@' keeps it apart from
    /// API users.
    QString host_account = QStringLiteral("@torlan");

    int packet_bytes = 4 * 1024 * 1024;              ///< largest packet accepted
    qint64 queued_bytes = qint64(64) * 1024 * 1024;  ///< waiting for one client
    /// Unacknowledged messages to and from one client. Clients that speak MQTT 3 are not told, and
    /// what they send beyond it is lost.
    int in_flight_messages = 10'000;

    /// How long the broker keeps the session of a user without a connection.
    std::chrono::seconds session_idle{7 * 24 * 3600};
    /// Of the broker's own; above, who asks for more is dropped.
    qint64 memory_bytes = 2'000'000'000;
    /// What one user may publish; 0: no limit.
    int publishes_per_second = 1'000;
    int publish_bytes_per_second = 2 * 1024 * 1024;
    /// Within which it answers the host; one that does not for five times as long is ended.
    std::chrono::milliseconds answer_timeout{5'000};
    int descriptors = 16'384;  ///< open connections and files, as far as the system allows

    port_holder_t port_holder;  ///< for sentences about a port that is taken; may be null
    QString plugin;             ///< library; empty: as installed
    int lock = -1;              ///< descriptor that it holds as long as it runs; -1: none
    QString executable;         ///< empty: "mosquitto" in PATH or in the system's folders
    /// System account that the broker runs as when the host runs as root.
    QString system_account = QStringLiteral("mosquitto");

    std::chrono::milliseconds start_timeout{5'000};  ///< until it listens
    std::chrono::milliseconds stop_timeout{1'000};   ///< until it is killed
    std::chrono::milliseconds restart_shortest{200};
    std::chrono::milliseconds restart_longest{30'000};
};

}  // namespace broker
