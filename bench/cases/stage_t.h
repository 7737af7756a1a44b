#pragma once

#include "bench/cases/our_home_t.h"
#include "bench/cases/raw_broker_t.h"

namespace bench {

/// What a measurement is made on: one installation and its raw twin.
struct stage_t {
    stage_t(int _elements, int _users) : home(_elements, _users), raw(home.users()) {}

    base::result_t start() {
        const base::result_t started = home.start();
        return started.is_ok() ? raw.start() : started;
    }

    our_home_t home;
    raw_broker_t raw;
};

}  // namespace bench
