#include "bench/cases/start_run_t.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <future>

#include "bench/cases/raw_broker_t.h"
#include "bench/measure/json_array.h"
#include "bench/measure/process_use.h"
#include "kit/end_with_test.h"

namespace bench {

namespace {

using namespace std::chrono_literals;
using base::result_t;
using clock_t = state_watch_t::clock_t;

constexpr auto longest_sign_in = 120s;
constexpr auto longest_start = 600s;
/// After which nothing more is expected.
constexpr auto silence = 15s;

double seconds(const QElapsedTimer& _clock) {
    return rounded(double(_clock.nsecsElapsed()) / 1e9);
}

/// Handles events until the other thread is done.
bool wait_for(std::future<bool>* _done) {
    while (_done->wait_for(0s) != std::future_status::ready) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        _done->wait_for(5ms);
    }
    return _done->get();
}

template <class place_t>
std::vector<door_t> doors_of(const place_t& _place, const QStringList& _users) {
    std::vector<door_t> doors;
    for (const QString& user : _users) {
        doors.push_back(_place.door(user));
    }
    return doors;
}

}  // namespace

start_run_t::start_run_t(int _elements, int _users)
    : elements(_elements), users(_users), home(_elements, _users) {
    figures = {{"elements", elements}, {"users", users}};
}

result_t start_run_t::run() {
    QElapsedTimer clock;
    clock.start();
    result_t result = home.import();
    figures.insert("import_s", seconds(clock));
    result = result.is_ok() ? start_first() : result;
    result = result.is_ok() ? start_again() : result;
    home.process().stop();
    return result.is_ok() ? publish_raw() : result;
}

bool start_run_t::listen(state_watch_t* _watch, const std::atomic<bool>& _begun) {
    const auto is_over = [&]() {
        return _watch->heard() == _watch->expected() ||
               (_begun && clock_t::now() - _watch->last_new() > silence);
    };
    return _watch->sign_in(longest_sign_in, 0) && _watch->run(is_over, longest_start);
}

result_t start_run_t::start_first() {
    state_watch_t watch(doors_of(home, home.users()), std::size_t(elements));
    std::atomic<bool> ready{false};
    auto heard = std::async(std::launch::async, listen, &watch, std::cref(ready));
    QElapsedTimer clock;
    clock.start();
    const result_t started = home.start_again();
    figures.insert("ready_s", seconds(clock));
    figures.insert("heard_at_ready", double(watch.heard()));
    ready = true;
    const bool listened = wait_for(&heard);
    if (!started.is_ok() || !listened) {
        return started.is_ok() ? result_t::failed("A user who listens to a start was not let in.")
                               : started;
    }
    state_bytes = watch.state_bytes();
    figures.insert("expected", double(watch.expected()));
    figures.insert("heard", double(watch.heard()));
    figures.insert("start_s", rounded(since_driver_start(watch.last_new())));
    figures.insert("server_peak", double(peak_bytes(home.server_pid())));
    figures.insert("server_resident", double(resident_bytes(home.server_pid())));
    figures.insert("broker_peak", double(peak_bytes(home.broker_pid())));
    return {};
}

double start_run_t::since_driver_start(clock_t::time_point _moment) const {
    QFile log(home.data() + "/logs/server-torlan.log");
    const bool opened = log.open(QIODevice::ReadOnly);
    while (opened && !log.atEnd()) {
        const QString line = QString::fromUtf8(log.readLine());
        if (line.contains(QLatin1String("init_database [plugin_driver_api]"))) {
            const auto began =
                QDateTime::fromString(line.left(23), QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
            const auto ago = std::chrono::duration<double>(clock_t::now() - _moment).count();
            return double(began.msecsTo(QDateTime::currentDateTime())) / 1000 - ago;
        }
    }
    return -1;
}

result_t start_run_t::start_again() {
    home.process().stop();
    QElapsedTimer clock;
    clock.start();
    const result_t started = home.start_again();
    figures.insert("second_ready_s", seconds(clock));
    return started;
}

result_t start_run_t::publish_raw() {
    raw_broker_t raw(home.users());
    const result_t started = raw.start();
    if (!started.is_ok()) {
        return started;
    }
    state_watch_t watch(doors_of(raw, home.users()), std::size_t(elements));
    std::atomic<bool> over{false};
    auto heard = std::async(std::launch::async, listen, &watch, std::cref(over));
    const door_t door = raw.host_door();
    QProcess publisher;
    kit::end_with_test(&publisher);
    publisher.start(TORLAN_BENCH_PUBLISH,
                    {QString::fromStdString(door.host), "0", "20", QString::number(users),
                     QString::number(elements), QString::number(state_bytes)});
    publisher.write(QByteArray::fromStdString(door.user + ' ' + door.password + '\n'));
    const bool listened = wait_for(&heard);
    publisher.waitForFinished(60'000);
    const QList<QByteArray> said = publisher.readAllStandardOutput().simplified().split(' ');
    if (!listened || said.value(0) != "done") {
        return result_t::failed("The raw publication of a start was not heard.");
    }
    figures.insert("raw_s", said.value(1).toDouble());
    figures.insert("raw_broker_peak", double(peak_bytes(raw.pid())));
    return {};
}

}  // namespace bench
