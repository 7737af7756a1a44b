#include "bench/cases/peer_cases.h"

#include "bench/cases/lane_t.h"
#include "bench/cases/peer_process_t.h"
#include "bench/cases/progress.h"
#include "bench/cases/stage_t.h"
#include "bench/load/request_load_t.h"

namespace bench {

namespace {

using base::result_t;

constexpr int elements = 40;

std::unique_ptr<lane_t> lane_of(const QString& _name, request_plan_t _request, const door_t& _door,
                                const QList<lane_t::process_t>& _processes) {
    _request.users = {_door};
    return std::make_unique<lane_t>(_name, std::make_unique<request_load_t>(std::move(_request)),
                                    _processes);
}

result_t race(const run_plan_t& _plan, lane_t* _ours, lane_t* _peer) {
    result_t result = _ours->sign_in();
    result = result.is_ok() ? _peer->sign_in() : result;
    for (int round = -1; result.is_ok() && round < _plan.rounds; ++round) {
        result = _ours->run(round >= 0);  // the first one warms up
        result = result.is_ok() ? _peer->run(round >= 0) : result;
    }
    return result;
}

result_t measure(const run_plan_t& _plan, stage_t* _stage, qint64 _peer_pid, int _qos,
                 int _in_flight, QJsonArray* _results) {
    tell(QStringLiteral("Node-RED, QoS %1, in flight %2").arg(_qos).arg(_in_flight));
    const QString user = _stage->home.users().first();
    request_plan_t request;
    request.verb_and_list = "get/elements/objects_list/e-7";
    request.request_qos = _qos;
    request.in_flight = _in_flight;
    request.duration = _plan.duration;
    request.answers = "me/status/#";
    const auto ours =
        lane_of("torlan", request, _stage->home.door(user),
                {{"server", _stage->home.server_pid()}, {"broker", _stage->home.broker_pid()}});
    request.client = "peer";
    request.answers = "re-peer/request/#";
    const auto peer = lane_of("node-red", request, _stage->raw.door(user),
                              {{"node", _peer_pid}, {"broker", _stage->raw.pid()}});
    const result_t raced = race(_plan, ours.get(), peer.get());
    _results->append(QJsonObject{{"qos", _qos},
                                 {"in_flight", _in_flight},
                                 {"lanes", QJsonArray{ours->json(), peer->json()}}});
    return raced;
}

}  // namespace

result_t measure_peer(const run_plan_t& _plan, QJsonArray* _results) {
    if (_plan.peer.isEmpty()) {
        return {};
    }
    stage_t stage(elements, 1);
    result_t result = stage.start();
    peer_process_t peer;
    if (result.is_ok()) {
        result = peer.start(_plan.peer, stage.raw.door(stage.home.users().first()));
    }
    for (const int qos : {0, 2}) {
        for (const int in_flight : {1, 100}) {
            if (result.is_ok()) {
                result = measure(_plan, &stage, peer.pid(), qos, in_flight, _results);
            }
        }
    }
    return result;
}

}  // namespace bench
