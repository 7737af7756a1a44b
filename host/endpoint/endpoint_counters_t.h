#pragma once

#include <QtGlobal>
#include <atomic>

namespace comunication {

/// What an endpoint has done since it was made. Counted on its thread, read from any.
struct endpoint_counters_t {
    std::atomic<quint64> received{0};              ///< messages of the broker, all kinds
    std::atomic<quint64> published{0};             ///< acknowledged by the broker
    std::atomic<quint64> refused{0};               ///< by the endpoint, the library or the broker
    std::atomic<quint64> dropped_disconnected{0};  ///< no connection, or lost with it
    std::atomic<quint64> dropped_full{0};          ///< the queue was full
    std::atomic<quint64> retained_requests_cleared{0};  ///< dropped and taken off the broker
    std::atomic<quint64> malformed_answered{0};         ///< requests without a JSON object
    std::atomic<quint64> requests_refused{0};           ///< too many or too large
    std::atomic<quint64> refusals_dropped{0};           ///< of these, without an answer
    std::atomic<quint64> too_large{0};                  ///< messages above the broker's limit
    std::atomic<quint64> reconnects{0};                 ///< connections after the first one
};

}  // namespace comunication
