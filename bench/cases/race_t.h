#pragma once

#include <QJsonArray>
#include <memory>
#include <vector>

#include "bench/cases/echo_process_t.h"
#include "bench/cases/lane_t.h"
#include "bench/cases/stage_t.h"
#include "bench/load/request_load_t.h"

namespace bench {

/// The server and the raw pairs in turn, A B A B, on one kind of request.
class race_t {
 public:
    /// @p _request: the lanes fill in users, words and where answers come
    race_t(stage_t* _stage, request_plan_t _request, int _users);

    /// Signs in everybody and warms up.
    base::result_t prepare();
    base::result_t run(int _rounds);
    QJsonArray json() const;
    std::size_t answer_bytes() const { return lanes.empty() ? 0 : lanes.front()->bytes(); }

 private:
    base::result_t add_ours();
    /// @p _answer_qos: the request has its own
    base::result_t add_raw(const QString& _name, echo_process_t::who_t _who, int _answer_qos);
    base::result_t add(std::unique_ptr<lane_t> _lane);

    stage_t* const stage;
    const request_plan_t request;
    const QStringList users;
    std::vector<std::unique_ptr<echo_process_t>> echoes;
    std::vector<std::unique_ptr<lane_t>> lanes;
};

}  // namespace bench
