#include "bench/cases/request_cases.h"

#include "bench/cases/progress.h"
#include "bench/cases/race_t.h"

namespace bench {

namespace {

using base::result_t;

struct operation_t {
    QString name;
    int elements;
    std::string verb_and_list;
    std::string data;
};

/// A write is followed by a retained state for each user who may read, of one or 20; no raw pair
/// does that.
const QList<operation_t> operations{
    {"read one", 40, "get/elements/objects_list/e-7", ""},
    {"write one", 40, "set/elements/objects_list/e-7", R"("data":{"functions":{"execute":"0"}},)"},
    {"read all", 40, "get/elements/objects_list", ""},
    {"read all", 1000, "get/elements/objects_list", ""}};

struct load_t {
    int users;
    int in_flight;  ///< of each user
};

const QList<load_t> loads{{1, 1}, {1, 100}, {20, 1}, {20, 5}};
const QList<load_t> smallest_loads{{1, 5}};

class request_cases_t {
 public:
    request_cases_t(const run_plan_t& _plan, QJsonArray* _results)
        : plan(_plan), results(_results) {}

    /// All with so many elements and users.
    result_t run(int _elements, int _users) {
        stage_t stage(_elements, _users);
        result_t result = stage.start();
        for (const operation_t& operation : operations) {
            for (const int qos : {2, 0}) {
                if (result.is_ok() && operation.elements == _elements) {
                    result = run(&stage, operation, qos);
                }
            }
        }
        return result;
    }

 private:
    result_t run(stage_t* _stage, const operation_t& _operation, int _qos) {
        result_t result;
        for (const load_t& load : plan.smallest ? smallest_loads : loads) {
            if (result.is_ok() && load.users == _stage->home.users().size()) {
                result = run(_stage, _operation, _qos, load);
            }
        }
        return result;
    }

    result_t run(stage_t* _stage, const operation_t& _operation, int _qos, const load_t& _load) {
        tell(QStringLiteral("%1 of %2, QoS %3, users %4, in flight %5 each")
                 .arg(_operation.name)
                 .arg(_operation.elements)
                 .arg(_qos)
                 .arg(_load.users)
                 .arg(_load.in_flight));
        request_plan_t request;
        request.verb_and_list = _operation.verb_and_list;
        request.data = _operation.data;
        request.request_qos = _qos;
        request.in_flight = _load.in_flight;
        request.duration = plan.duration;
        race_t race(_stage, request, _load.users);
        result_t result = race.prepare();
        result = result.is_ok() ? race.run(plan.rounds) : result;
        results->append(QJsonObject{{"operation", _operation.name},
                                    {"elements", _operation.elements},
                                    {"qos", _qos},
                                    {"users", _load.users},
                                    {"in_flight", _load.in_flight},
                                    {"answer_bytes", int(race.answer_bytes())},
                                    {"lanes", race.json()}});
        return result;
    }

    const run_plan_t plan;
    QJsonArray* const results;
};

}  // namespace

result_t measure_requests(const run_plan_t& _plan, QJsonArray* _results) {
    request_cases_t cases(_plan, _results);
    result_t result;
    for (const int elements : {40, 1000}) {
        for (const int users : {1, 20}) {
            if (result.is_ok() && (users == 1 || !_plan.smallest)) {
                result = cases.run(elements, users);
            }
        }
    }
    return result;
}

}  // namespace bench
