#include <QElapsedTimer>
#include <QTest>
#include <algorithm>
#include <thread>

#include "kit/guessers_t.h"
#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace kit;

/// Users while others try wrong passwords.
class tst_plugin_flood : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void others_are_served_data();
    void others_are_served();

 private:
    /// Sorted times of round trips, in microseconds.
    QList<qint64> round_trips(raw_mqtt_t* _client);
    /// Tries until the broker answers; how often.
    int enter_at_last(const raw_connect_t& _as, int* _code);

    std::unique_ptr<plugin_broker_t> broker;
};

void tst_plugin_flood::init() {
    broker = std::make_unique<plugin_broker_t>();
    QVERIFY(broker->connect_host());
}

void tst_plugin_flood::cleanup() {
    QVERIFY(broker->is_running());
    broker.reset();
}

QList<qint64> tst_plugin_flood::round_trips(raw_mqtt_t* _client) {
    QList<qint64> times;
    QElapsedTimer clock;
    for (int i = 0; i < 500; ++i) {
        clock.start();
        _client->is_alive();
        times.append(clock.nsecsElapsed() / 1'000);
    }
    std::sort(times.begin(), times.end());
    return times;
}

int tst_plugin_flood::enter_at_last(const raw_connect_t& _as, int* _code) {
    QElapsedTimer clock;
    clock.start();
    int tries = 0;
    do {
        broker->enter(_as, _code);
        ++tries;
    } while (*_code == raw_mqtt_t::closed && clock.elapsed() < 60'000);
    return tries;
}

void tst_plugin_flood::others_are_served_data() {
    QTest::addColumn<int>("iterations");
    QTest::newRow("as the host makes them") << 5'000;
    QTest::newRow("expensive") << 100'000;
}

void tst_plugin_flood::others_are_served() {
    QFETCH(int, iterations);
    broker->tell("all", {plugin_broker_t::user("alice", {}, iterations),
                         plugin_broker_t::user("bob", {}, iterations),
                         plugin_broker_t::user("carol", {}, iterations)});
    int code = 0;
    enter_at_last({.name = "alice"}, &code);
    const auto alice = broker->enter({.name = "alice", .id = "victim"}, &code);
    QCOMPARE(code, 0);
    const QList<qint64> quiet = round_trips(alice.get());

    const guessers_t flood(broker->port, "carol");
    while (flood.tries < 100) {
        std::this_thread::yield();
    }
    const int tries_before = flood.tries;
    const QList<qint64> flooded = round_trips(alice.get());
    // Known by her password: answered at the first try.
    QElapsedTimer clock;
    clock.start();
    broker->enter({.name = "alice", .id = "again"}, &code);
    const qint64 known = clock.restart();
    QCOMPARE(code, 0);
    // He has not been here yet.
    const int tries = enter_at_last({.name = "bob", .id = "bob"}, &code);
    QCOMPARE(code, 0);
    qInfo(
        "round trip, quiet: median %lld us, p99 %lld us; flooded: median %lld us, p99 %lld us; "
        "known user in after %lld ms, a new one after %lld ms and %d tries; %d guesses",
        quiet[250], quiet[495], flooded[250], flooded[495], known, clock.elapsed(), tries,
        flood.tries - tries_before);
    QVERIFY(flooded[250] < 20'000);
}

QTEST_GUILESS_MAIN(tst_plugin_flood)
#include "tst_plugin_flood.moc"
