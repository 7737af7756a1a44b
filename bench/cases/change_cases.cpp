#include "bench/cases/change_cases.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonObject>
#include <QTimer>

#include "bench/cases/beside.h"
#include "bench/cases/our_home_t.h"
#include "bench/cases/progress.h"
#include "bench/load/client_loop_t.h"
#include "bench/load/state_watch_t.h"
#include "bench/measure/json_array.h"
#include "bench/measure/process_use.h"
#include "bench/measure/statistics.h"
#include "program/exit_status_t.h"
#include "system/support/database_shell_t.h"

namespace bench {

namespace {

using namespace std::chrono_literals;
using base::result_t;

constexpr auto longest_wait = 120s;
constexpr int look_ms = 250;
/// Of processor time between two looks, below which a server counts as quiet.
constexpr double quiet_us = 5'000;

class change_run_t {
 public:
    change_run_t(int _elements, int _users, const run_plan_t& _plan)
        : elements(_elements),
          changes(_plan.smallest ? 3 : 20),
          // The driver reads grants again 10 s after they change.
          least_ms(_plan.smallest ? 0 : 13'000),
          home(_elements, _users) {
        figures = {{"elements", _elements}, {"users", _users}};
    }

    result_t run() {
        result_t started = home.import();
        QElapsedTimer clock;
        clock.start();
        started = started.is_ok() ? home.start_again() : started;
        figures.insert("ready_s", rounded(double(clock.elapsed()) / 1000));
        if (!started.is_ok()) {
            return started;
        }
        if (!beside([this]() { return change_items(); })) {
            return result_t::failed("A change of an item was not pushed.");
        }
        const QString user = home.users().last();
        figures.insert("bulk_ms", cost_of([this]() {
                           return support::database_shell_t(database())
                               .run("UPDATE elements SET name = name || '!'");
                       }));
        figures.insert("revoke_ms", cost_of([&]() {
                           return is_stored(home.process().control({"grant", user, "e-1", "deny"}));
                       }));
        figures.insert("user_removed_ms", cost_of([&]() {
                           return is_stored(home.process().control({"user", "remove", user}));
                       }));
        return failed ? result_t::failed("A change was refused: " + home.process().error())
                      : result_t();
    }

    QJsonObject json() const { return figures; }

 private:
    /// Effective, or stored: a large server may be away for longer than torlanctl waits.
    static bool is_stored(int _status) {
        return _status == torlan::status_done || _status == torlan::status_stored;
    }

    QString database() { return home.process().data() + "/installation.db"; }

    /// One after the other, each until the first user has its state.
    bool change_items() {
        state_watch_t watch({home.door(home.users().first())}, std::size_t(elements));
        if (!watch.sign_in(60s, 2) ||
            !watch.run([&]() { return watch.heard() == watch.expected(); }, longest_wait)) {
            return false;
        }
        const support::database_shell_t shell(database());
        std::vector<double> costs;
        for (long value = 1; value <= changes; ++value) {
            const std::size_t element = std::size_t(value * 7 % elements);
            const double before = processor_us(home.server_pid());
            if (!shell.run(QStringLiteral("UPDATE items SET value = '%1' WHERE id = 'i-%2'")
                               .arg(value)
                               .arg(element)) ||
                !watch.run([&]() { return watch.values()[0][element] == value; }, longest_wait)) {
                return false;
            }
            // What follows the push belongs to the change: every element hears it.
            watch.run([]() { return false; }, 100ms);
            costs.push_back((processor_us(home.server_pid()) - before) / 1000);
        }
        figures.insert("item_ms", json_array(costs));
        return true;
    }

    /// Of a change, until the server is quiet again, in ms.
    template <class function_t>
    double cost_of(const function_t& _change) {
        wait_until_quiet(0);
        const double before = processor_us(home.server_pid());
        failed = !_change() || failed;
        wait_until_quiet(least_ms);
        return rounded((processor_us(home.server_pid()) - before) / 1000);
    }

    void wait_until_quiet(int _least_ms) {
        QElapsedTimer clock;
        clock.start();
        int quiet = 0;
        double former = processor_us(home.server_pid());
        while ((quiet < 3 || clock.elapsed() < _least_ms) && !client_loop_t::is_stopped()) {
            QEventLoop loop;
            QTimer::singleShot(look_ms, &loop, &QEventLoop::quit);
            loop.exec();
            const double now = processor_us(home.server_pid());
            quiet = now - former < quiet_us ? quiet + 1 : 0;
            former = now;
        }
    }

    const int elements;
    const int changes;
    const int least_ms;
    our_home_t home;
    bool failed = false;
    QJsonObject figures;
};

}  // namespace

result_t measure_changes(const run_plan_t& _plan, QJsonArray* _results) {
    const QList<std::pair<int, int>> sizes =
        _plan.smallest
            ? QList<std::pair<int, int>>{{20, 2}}
            : QList<std::pair<int, int>>{{100, 10}, {1000, 10}, {10000, 10}, {30000, 10}};
    for (const auto& [elements, users] : sizes) {
        tell(QStringLiteral("changes with %1 elements, %2 users").arg(elements).arg(users));
        change_run_t run(elements, users, _plan);
        const result_t ran = run.run();
        if (!ran.is_ok()) {
            return ran;
        }
        _results->append(run.json());
    }
    return {};
}

}  // namespace bench
