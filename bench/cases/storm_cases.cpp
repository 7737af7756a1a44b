#include "bench/cases/storm_cases.h"

#include <QJsonObject>

#include "bench/cases/beside.h"
#include "bench/cases/item_writer_t.h"
#include "bench/cases/our_home_t.h"
#include "bench/cases/progress.h"
#include "bench/load/state_watch_t.h"
#include "bench/measure/json_array.h"
#include "bench/measure/process_use.h"
#include "bench/measure/statistics.h"

namespace bench {

namespace {

using namespace std::chrono_literals;
using base::result_t;
using clock_t = state_watch_t::clock_t;

struct storm_t {
    int elements;
    int users;
    int rate;  ///< changes a second
    int seconds;
};

constexpr auto longest_start = 60s;
constexpr auto longest_settling = 240s;

class storm_run_t {
 public:
    explicit storm_run_t(const storm_t& _storm)
        : storm(_storm), home(_storm.elements, _storm.users) {}

    result_t run(QJsonArray* _results) {
        result_t result = home.start();
        if (!result.is_ok()) {
            return result;
        }
        for (const QString& user : home.users()) {
            doors.push_back(home.door(user));
        }
        const double before = processor_us(home.server_pid());
        if (!beside([this]() { return suffer(); })) {
            return result_t::failed(
                "The storm could not be made: somebody was not let in, or the "
                "database did not take a change.");
        }
        _results->append(json(processor_us(home.server_pid()) - before));
        return {};
    }

 private:
    bool suffer() {
        state_watch_t watch(doors, std::size_t(storm.elements));
        if (!watch.sign_in(longest_start, 2) ||
            !watch.run([&]() { return watch.heard() == watch.expected(); }, longest_start)) {
            return false;
        }
        item_writer_t writer(home.process().data() + "/installation.db", storm.elements, storm.rate,
                             storm.rate * storm.seconds);
        watch.on_first = [&](std::size_t, long _value) {
            if (_value > 0 && _value <= writer.count()) {
                waits.push_back(std::chrono::duration<double, std::milli>(clock_t::now() -
                                                                          writer.written(_value))
                                    .count());
            }
        };
        const bool written =
            watch.run([&]() { return writer.is_done(); }, longest_settling) && writer.is_good();
        const auto end = clock_t::now();
        is_right =
            written && watch.run([&]() { return all_right(watch, writer); }, longest_settling);
        settling = std::chrono::duration<double>(clock_t::now() - end).count();
        return written;
    }

    /// Asked at every turn: what was right stays so.
    bool all_right(const state_watch_t& _watch, const item_writer_t& _writer) {
        const std::size_t all = _watch.expected();
        while (judged < all) {
            const std::size_t element = judged % std::size_t(storm.elements);
            const std::size_t user = judged / std::size_t(storm.elements);
            if (_watch.values()[user][element] != _writer.last_of(int(element))) {
                return false;
            }
            ++judged;
        }
        return true;
    }

    QJsonObject json(double _processor_us) const {
        return {{"elements", storm.elements},
                {"users", storm.users},
                {"rate", storm.rate},
                {"seconds", storm.seconds},
                {"heard", int(waits.size())},
                {"right", is_right},
                {"settling_s", rounded(settling)},
                {"median_ms", rounded(median(waits))},
                {"p99_ms", rounded(quantile(waits, 0.99))},
                {"longest_ms", rounded(quantile(waits, 1))},
                {"latencies", json_array(percentiles(waits))},
                {"server_s", rounded(_processor_us / 1e6)},
                {"server_peak", double(peak_bytes(home.server_pid()))},
                {"broker_peak", double(peak_bytes(home.broker_pid()))}};
    }

    const storm_t storm;
    our_home_t home;
    std::vector<door_t> doors;
    std::vector<double> waits;  ///< of the first user, in ms
    std::size_t judged = 0;
    bool is_right = false;
    double settling = 0;
};

}  // namespace

result_t measure_storms(const run_plan_t& _plan, QJsonArray* _results) {
    const QList<storm_t> storms = _plan.smallest
                                      ? QList<storm_t>{{20, 2, 100, 1}}
                                      : QList<storm_t>{{300, 10, 1000, 30}, {10000, 3, 60, 20}};
    result_t result;
    for (const storm_t& storm : storms) {
        if (result.is_ok()) {
            tell(QStringLiteral("storm of %1 changes a second, %2 elements, %3 users")
                     .arg(storm.rate)
                     .arg(storm.elements)
                     .arg(storm.users));
            result = storm_run_t(storm).run(_results);
        }
    }
    return result;
}

}  // namespace bench
