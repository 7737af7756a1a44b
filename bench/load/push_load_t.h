#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "bench/load/client_loop_t.h"
#include "bench/load/load_client_t.h"
#include "bench/load/load_t.h"

namespace bench {

/// Who hears and what is changed.
struct push_plan_t {
    std::vector<door_t> users;  ///< all hear; the first one writes
    int elements = 40;
    int at_once = 1;  ///< changes on their way
    std::chrono::milliseconds duration{400};
    std::size_t least = 20;
};

/// One user writes and all wait for the retained states, one element after the other. A wait is
/// from the write to the last user's state.
class push_load_t : public load_t {
 public:
    explicit push_load_t(push_plan_t _plan);
    ~push_load_t() override;

    bool sign_in() override;
    bool run(load_result_t* _result) override;

 private:
    using clock_t = client_loop_t::clock_t;
    struct change_t {
        clock_t::time_point begin;
        std::size_t missing;
    };

    void on_state(std::string_view _payload);
    void change();

    const push_plan_t plan;
    std::vector<std::unique_ptr<load_client_t>> clients;
    client_loop_t loop;
    std::vector<change_t> changes;  ///< by the value that is written
    std::size_t first = 0;          ///< of this round
    clock_t::time_point begin;
    load_result_t* result = nullptr;
};

}  // namespace bench
