#pragma once

#include <QJsonObject>
#include <atomic>

#include "base/result_t.h"
#include "bench/cases/our_home_t.h"
#include "bench/load/state_watch_t.h"

namespace bench {

/// One size of an installation, started. Everybody listens at QoS 0 from before the first state, to
/// the server and to the raw publication alike.
class start_run_t {
 public:
    start_run_t(int _elements, int _users);

    base::result_t run();
    QJsonObject json() const { return figures; }

 private:
    base::result_t start_first();
    base::result_t start_again();
    base::result_t publish_raw();
    /// Hears until all is there, or nothing new has come for a while after @p _begun is over.
    static bool listen(state_watch_t* _watch, const std::atomic<bool>& _begun);
    /// Seconds since the driver got its database, as the log says; -1: it does not.
    double since_driver_start(state_watch_t::clock_t::time_point _moment) const;

    const int elements;
    const int users;
    our_home_t home;
    std::size_t state_bytes = 0;
    QJsonObject figures;
};

}  // namespace bench
