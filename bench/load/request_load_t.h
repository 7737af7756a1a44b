#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "bench/load/client_loop_t.h"
#include "bench/load/load_client_t.h"
#include "bench/load/load_t.h"

namespace bench {

/// What users send and where its answer comes.
struct request_plan_t {
    std::vector<door_t> users;  ///< one client each
    std::string client = "me";  ///< word that tells clients of one user apart
    std::string verb_and_list;  ///< behind ".../request/"
    std::string data;           ///< a member of the payload with a comma, or nothing
    std::string answers;        ///< "<client>/status/#" or where a raw pair answers
    int request_qos = 2;
    int answer_qos = 2;
    int in_flight = 1;  ///< of each user
    std::chrono::milliseconds duration{400};
    std::size_t least = 20;  ///< requests, however long they take
};

/// Users who keep so many requests waiting for their answers.
class request_load_t : public load_t {
 public:
    explicit request_load_t(request_plan_t _plan);
    ~request_load_t() override;

    bool sign_in() override;
    bool run(load_result_t* _result) override;

 private:
    using clock_t = client_loop_t::clock_t;

    void on_answer(std::size_t _user, std::string_view _payload);
    void ask(std::size_t _user);
    bool may_ask() const;

    const request_plan_t plan;
    std::vector<std::unique_ptr<load_client_t>> clients;
    client_loop_t loop;
    std::vector<clock_t::time_point> asked;  ///< by uuid
    std::size_t first = 0;                   ///< uuid of this round
    clock_t::time_point begin;
    load_result_t* result = nullptr;
};

}  // namespace bench
