#include "bench/cases/race_t.h"

#include <utility>

namespace bench {

using base::result_t;

race_t::race_t(stage_t* _stage, request_plan_t _request, int _users)
    : stage(_stage), request(std::move(_request)), users(_stage->home.users().mid(0, _users)) {}

result_t race_t::add(std::unique_ptr<lane_t> _lane) {
    lanes.push_back(std::move(_lane));
    const result_t in = lanes.back()->sign_in();
    return in.is_ok() ? lanes.back()->run(false) : in;
}

result_t race_t::add_ours() {
    request_plan_t plan = request;
    plan.client = "me";
    plan.answers = "me/status/#";
    for (const QString& user : users) {
        plan.users.push_back(stage->home.door(user));
    }
    return add(
        std::make_unique<lane_t>("torlan", std::make_unique<request_load_t>(std::move(plan)),
                                 QList<lane_t::process_t>{{"server", stage->home.server_pid()},
                                                          {"broker", stage->home.broker_pid()}}));
}

result_t race_t::add_raw(const QString& _name, echo_process_t::who_t _who, int _answer_qos) {
    request_plan_t plan = request;
    const bool as_host = _who == echo_process_t::who_t::host;
    // Another word each: all raw pairs have one broker.
    plan.client = "m" + std::to_string(lanes.size());
    plan.answers = as_host ? plan.client + "/status/#" : "re-" + plan.client + "/request/#";
    for (const QString& user : users) {
        plan.users.push_back(stage->raw.door(user));
    }
    echo_process_t::plan_t echo{plan.users, _who, plan.client, _answer_qos, lanes.front()->bytes()};
    if (as_host) {
        echo.doors = {stage->raw.host_door()};
    }
    echoes.push_back(std::make_unique<echo_process_t>());
    const result_t started = echoes.back()->start(echo);
    return started.is_ok() ? add(std::make_unique<lane_t>(
                                 _name, std::make_unique<request_load_t>(std::move(plan)),
                                 QList<lane_t::process_t>{{"echo", echoes.back()->pid()},
                                                          {"broker", stage->raw.pid()}}))
                           : started;
}

result_t race_t::prepare() {
    using who_t = echo_process_t::who_t;
    result_t result = add_ours();
    if (result.is_ok()) {
        result = add_raw("raw tcp", who_t::users, 2);
    }
    if (result.is_ok() && request.request_qos == 0) {
        result = add_raw("raw tcp, qos 0 back", who_t::users, 0);
    }
    return result.is_ok() ? add_raw("raw unix", who_t::host, 2) : result;
}

result_t race_t::run(int _rounds) {
    for (int round = 0; round < _rounds; ++round) {
        for (const auto& lane : lanes) {
            const result_t ran = lane->run(true);
            if (!ran.is_ok()) {
                return ran;
            }
        }
    }
    return {};
}

QJsonArray race_t::json() const {
    QJsonArray array;
    for (const auto& lane : lanes) {
        array.append(lane->json());
    }
    return array;
}

}  // namespace bench
