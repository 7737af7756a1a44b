#pragma once

#include "kit/mqtt_client_t.h"
#include "system/support/host_process_t.h"

namespace support {

/// How long somebody waited for answers, in milliseconds, and the most memory meanwhile, in MiB.
struct waits_t {
    int unanswered = 0;
    double median = 0;
    double p99 = 0;
    double longest = 0;
    int server = 0;
    int broker = 0;
};

/// A user who reads one lamp after the other.
class victim_t {
 public:
    victim_t(const host_process_t* _host, const QString& _user) : host(_host), user(_user) {}

    /// Whether the broker lets him in.
    bool sign_in();
    /// So many times and so long at least, with pauses: he keeps below every limit himself. Ends at
    /// the first request without an answer.
    waits_t ask(int _times, int _at_least_ms = 0);

 private:
    const host_process_t* const host;
    const QString user;
    kit::mqtt_client_t client;
};

}  // namespace support
