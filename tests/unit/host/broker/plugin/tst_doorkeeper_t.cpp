#include "broker/plugin/doorkeeper_t.h"

#include <QTest>

#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;
using namespace std::chrono_literals;
using verdict_t = doorkeeper_t::verdict_t;

namespace {

constexpr int expensive = 1'000;

}  // namespace

class tst_doorkeeper_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();

    void cheap_hash_is_answered_at_once();
    void first_one_is_answered_at_once_while_there_is_time();
    void without_time_the_next_try_is_answered();
    void after_the_first_success_it_takes_no_time();
    void wrong_password_is_answered_at_the_next_try();
    void unknown_name_takes_the_way_of_a_known_one_data();
    void unknown_name_takes_the_way_of_a_known_one();
    void account_that_came_later_is_not_held_against_its_name();
    void password_of_a_former_life_is_worth_nothing();
    void verdict_on_a_former_life_is_worth_nothing();
    void right_password_gets_through_a_flood_of_wrong_ones();
    void failures_are_reported_once_each();

 private:
    void make(std::chrono::milliseconds _at_once);
    verdict_t judge(const QByteArray& _name, const QByteArray& _password);
    /// Asks again until it is not "later"; how often it was asked, in @p _tries.
    verdict_t judge_again(const QByteArray& _name, const QByteArray& _password, int* _tries);
    QByteArray events() { return QByteArray::fromStdString(log->take()); }

    std::unique_ptr<event_log_t> log;
    std::unique_ptr<doorkeeper_t> door;
    moment_t now;
};

void tst_doorkeeper_t::init() {
    door.reset();
    log = std::make_unique<event_log_t>();
    now = {1'000s, 77};
}

void tst_doorkeeper_t::make(std::chrono::milliseconds _at_once) {
    door = std::make_unique<doorkeeper_t>(_at_once, log.get());
    door->accounts.apply(message_of("all 1", {plugin_broker_t::user("cheap", {}, 10),
                                              plugin_broker_t::user("alice", {}, expensive),
                                              plugin_broker_t::user("bob", {}, expensive)}));
}

verdict_t tst_doorkeeper_t::judge(const QByteArray& _name, const QByteArray& _password) {
    return door->judge({_name.toStdString(), "phone", "127.0.0.1"}, _password.constData(), now);
}

verdict_t tst_doorkeeper_t::judge_again(const QByteArray& _name, const QByteArray& _password,
                                        int* _tries) {
    QElapsedTimer clock;
    clock.start();
    verdict_t verdict = verdict_t::later;
    for (*_tries = 0; verdict == verdict_t::later && clock.elapsed() < 20'000; ++*_tries) {
        verdict = judge(_name, _password);
    }
    return verdict;
}

void tst_doorkeeper_t::cheap_hash_is_answered_at_once() {
    make(0ms);
    QVERIFY(judge("cheap", "cheap-pw") == verdict_t::right);
    QVERIFY(judge("cheap", "wrong") == verdict_t::wrong);
    QVERIFY(judge("cheap", "wrong") == verdict_t::wrong);
}

void tst_doorkeeper_t::first_one_is_answered_at_once_while_there_is_time() {
    make(1s);
    QVERIFY(judge("alice", "alice-pw") == verdict_t::right);
    QVERIFY(judge("bob", "wrong") == verdict_t::wrong);
    QVERIFY(judge("nobody", "wrong") == verdict_t::wrong);
}

void tst_doorkeeper_t::without_time_the_next_try_is_answered() {
    make(0ms);
    QVERIFY(judge("alice", "alice-pw") == verdict_t::later);
    int tries = 0;
    QVERIFY(judge_again("alice", "alice-pw", &tries) == verdict_t::right);
}

void tst_doorkeeper_t::after_the_first_success_it_takes_no_time() {
    make(0ms);
    int tries = 0;
    judge_again("alice", "alice-pw", &tries);
    for (int i = 0; i < 100; ++i) {
        QVERIFY(judge("alice", "alice-pw") == verdict_t::right);
    }
    QVERIFY(judge("alice", "alice-pwx") == verdict_t::later);
}

void tst_doorkeeper_t::wrong_password_is_answered_at_the_next_try() {
    make(0ms);
    QVERIFY(judge("alice", "wrong") == verdict_t::later);
    int tries = 0;
    QVERIFY(judge_again("alice", "wrong", &tries) == verdict_t::wrong);
    QVERIFY(judge("alice", "wrong") == verdict_t::wrong);
    now.steady += 61s;
    QVERIFY(judge("alice", "wrong") == verdict_t::later);
}

void tst_doorkeeper_t::unknown_name_takes_the_way_of_a_known_one_data() {
    QTest::addColumn<int>("at_once");
    QTest::addColumn<bool>("immediately");
    QTest::newRow("with time") << 1'000 << true;
    QTest::newRow("without") << 0 << false;
}

void tst_doorkeeper_t::unknown_name_takes_the_way_of_a_known_one() {
    QFETCH(int, at_once);
    QFETCH(bool, immediately);
    make(std::chrono::milliseconds(at_once));
    for (const char* const name : {"alice", "nobody"}) {
        QCOMPARE(judge(name, "wrong") == verdict_t::wrong, immediately);
        int tries = 0;
        QVERIFY(judge_again(name, "wrong", &tries) == verdict_t::wrong);
    }
    QCOMPARE(door->accounts.usual_iterations(1), std::uint32_t(expensive));
}

void tst_doorkeeper_t::account_that_came_later_is_not_held_against_its_name() {
    make(0ms);
    int tries = 0;
    QVERIFY(judge_again("carol", "carol-pw", &tries) == verdict_t::wrong);
    door->accounts.apply(message_of("change 2", {plugin_broker_t::user("carol", {}, expensive)}));
    QVERIFY(judge_again("carol", "carol-pw", &tries) == verdict_t::right);
}

void tst_doorkeeper_t::password_of_a_former_life_is_worth_nothing() {
    make(1s);
    QVERIFY(judge("alice", "alice-pw") == verdict_t::right);
    door->accounts.apply(
        message_of("change 2", {plugin_broker_t::user("alice", "other", expensive)}));
    QVERIFY(judge("alice", "alice-pw") == verdict_t::wrong);
    QVERIFY(judge("alice", "other") == verdict_t::right);
    door->accounts.apply(message_of("change 3", {"remove alice"}));
    QVERIFY(judge("alice", "other") == verdict_t::wrong);
}

void tst_doorkeeper_t::verdict_on_a_former_life_is_worth_nothing() {
    make(0ms);
    QVERIFY(judge("alice", "alice-pw") == verdict_t::later);  // is being found right
    door->accounts.apply(
        message_of("change 2", {plugin_broker_t::user("alice", "other", expensive)}));
    int tries = 0;
    QVERIFY(judge_again("alice", "alice-pw", &tries) == verdict_t::wrong);
}

void tst_doorkeeper_t::right_password_gets_through_a_flood_of_wrong_ones() {
    make(0ms);
    QElapsedTimer clock;
    clock.start();
    verdict_t bob = verdict_t::later;
    int number = 0;
    int tries = 0;
    while (bob == verdict_t::later && clock.elapsed() < 20'000) {
        // Forty guesses against bob himself and forty with other names, for each try of his.
        for (int i = 0; i < 40; ++i, ++number) {
            judge("bob", "guess" + QByteArray::number(number));
            judge("name" + QByteArray::number(number % 1'000), QByteArray::number(number));
        }
        bob = judge("bob", "bob-pw");
        ++tries;
    }
    QVERIFY(bob == verdict_t::right);
    QVERIFY2(tries < 1'000, qPrintable(QString::number(tries)));
    QVERIFY(log->take().find("event unchecked") != std::string::npos);
}

void tst_doorkeeper_t::failures_are_reported_once_each() {
    make(1s);
    judge("alice", "wrong");
    QCOMPARE(events(), "event failed 1 77 77 alice phone 127.0.0.1 password\n");
    judge("alice", "wrong");
    QCOMPARE(events(), "event failed 1 77 77 alice phone 127.0.0.1 password\n");
    judge("alice", "alice-pw");
    judge("alice", "alice-pw");
    QCOMPARE(events(), "");
    make(0ms);
    judge("alice", "another");
    QElapsedTimer clock;
    clock.start();
    while (log->is_empty() && clock.elapsed() < 20'000) {
        door->settle(now);
    }
    QCOMPARE(events(), "event failed 1 77 77 alice phone 127.0.0.1 password\n");
}

QTEST_GUILESS_MAIN(tst_doorkeeper_t)
#include "tst_doorkeeper_t.moc"
