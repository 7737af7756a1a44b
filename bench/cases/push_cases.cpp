#include "bench/cases/push_cases.h"

#include "bench/cases/echo_process_t.h"
#include "bench/cases/lane_t.h"
#include "bench/cases/progress.h"
#include "bench/cases/stage_t.h"
#include "bench/load/push_load_t.h"

namespace bench {

namespace {

using base::result_t;

constexpr int elements = 40;
/// Of the answer to a write, {"data":{"functions":{"execute":"202"}}}.
constexpr std::size_t answer_bytes = 42;

push_plan_t plan_of(const run_plan_t& _plan, int _at_once) {
    push_plan_t made;
    made.elements = elements;
    made.at_once = _at_once;
    made.duration = _plan.duration;
    return made;
}

/// The server's lane and the raw one of so many users and changes at once.
class push_race_t {
 public:
    push_race_t(stage_t* _stage, const run_plan_t& _plan, int _at_once)
        : stage(_stage), plan(_plan), at_once(_at_once) {}

    result_t run(QJsonArray* _results) {
        result_t result =
            begin(&ours, "torlan",
                  {{"server", stage->home.server_pid()}, {"broker", stage->home.broker_pid()}});
        result = result.is_ok() ? start_echo() : result;
        result = result.is_ok()
                     ? begin(&raw, "raw unix", {{"echo", echo.pid()}, {"broker", stage->raw.pid()}})
                     : result;
        for (int round = 0; result.is_ok() && round < plan.rounds; ++round) {
            result = ours->run(true);
            result = result.is_ok() ? raw->run(true) : result;
        }
        if (result.is_ok()) {
            _results->append(QJsonObject{{"users", int(stage->home.users().size())},
                                         {"at_once", at_once},
                                         {"state_bytes", int(ours->bytes())},
                                         {"lanes", QJsonArray{ours->json(), raw->json()}}});
        }
        return result;
    }

 private:
    result_t begin(std::unique_ptr<lane_t>* _lane, const QString& _name,
                   const QList<lane_t::process_t>& _processes) {
        push_plan_t made = plan_of(plan, at_once);
        for (const QString& user : stage->home.users()) {
            made.users.push_back(ours ? stage->raw.door(user) : stage->home.door(user));
        }
        *_lane = std::make_unique<lane_t>(_name, std::make_unique<push_load_t>(std::move(made)),
                                          _processes);
        const result_t in = (*_lane)->sign_in();
        return in.is_ok() ? (*_lane)->run(false) : in;
    }

    result_t start_echo() {
        return echo.start({.doors = {stage->raw.host_door()},
                           .who = echo_process_t::who_t::host,
                           .client = "me",
                           .answer_qos = 2,
                           .answer_bytes = answer_bytes,
                           .users = int(stage->home.users().size()),
                           .state_bytes = ours->bytes()});
    }

    stage_t* const stage;
    const run_plan_t plan;
    const int at_once;
    echo_process_t echo;
    std::unique_ptr<lane_t> ours;
    std::unique_ptr<lane_t> raw;
};

result_t measure(const run_plan_t& _plan, int _users, QJsonArray* _results) {
    stage_t stage(elements, _users);
    result_t result = stage.start();
    for (const int at_once : {1, 20}) {
        if (result.is_ok()) {
            tell(QStringLiteral("push to %1 users, %2 at once").arg(_users).arg(at_once));
            result = push_race_t(&stage, _plan, at_once).run(_results);
        }
    }
    return result;
}

}  // namespace

result_t measure_pushes(const run_plan_t& _plan, QJsonArray* _results) {
    result_t result;
    for (const int users : _plan.smallest ? QList<int>{2} : QList<int>{1, 10, 100}) {
        result = result.is_ok() ? measure(_plan, users, _results) : result;
    }
    return result;
}

}  // namespace bench
