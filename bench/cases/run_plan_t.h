#pragma once

#include <QString>
#include <chrono>

namespace bench {

/// How much is measured.
struct run_plan_t {
    int rounds = 9;                           ///< of each interleaved measurement
    std::chrono::milliseconds duration{400};  ///< of one lane in one round
    bool smallest =
        false;     ///< once, as small as it goes: proves that it works and says nothing else
    QString only;  ///< what holds this word; empty: all

    QString peer;  ///< folder where the peer is installed; empty: none

    bool wants(const QString& _name) const { return _name.contains(only); }
};

}  // namespace bench
