#include "bench/cases/start_cases.h"

#include "bench/cases/progress.h"
#include "bench/cases/start_run_t.h"

namespace bench {

base::result_t measure_starts(const run_plan_t& _plan, QJsonArray* _results) {
    const QList<int> elements = _plan.smallest ? QList<int>{10} : QList<int>{100, 1000, 10000};
    const QList<int> users = _plan.smallest ? QList<int>{2} : QList<int>{1, 10, 100};
    for (const int some : elements) {
        for (const int who : users) {
            tell(QStringLiteral("start with %1 elements, %2 users").arg(some).arg(who));
            start_run_t start(some, who);
            const base::result_t ran = start.run();
            if (!ran.is_ok()) {
                return ran;
            }
            _results->append(start.json());
        }
    }
    return {};
}

}  // namespace bench
