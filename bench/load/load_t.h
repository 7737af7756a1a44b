#pragma once

#include <cstddef>
#include <vector>

namespace bench {

struct load_result_t {
    double seconds = 0;
    std::vector<double> waits;  ///< of each piece of work, in microseconds
    std::size_t errors = 0;     ///< answers that are refusals
    std::size_t bytes = 0;      ///< of what came last
};

/// Clients who have some work done over and over and wait for it.
class load_t {
 public:
    load_t() = default;
    virtual ~load_t() = default;
    load_t(const load_t&) = delete;
    load_t& operator=(const load_t&) = delete;

    /// False: somebody was not let in.
    virtual bool sign_in() = 0;
    /// One round. False: something was not done in time.
    virtual bool run(load_result_t* _result) = 0;
};

}  // namespace bench
