#include "broker/plugin/password_worker_t.h"

#include <QTest>
#include <set>

#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;
using namespace std::chrono_literals;

namespace {

/// One that takes a fifth of a second and finds the password wrong.
password_check_t slow_check() {
    password_check_t check = check_of("alice", 0);
    check.hash.iterations = 300'000;
    return check;
}

}  // namespace

class tst_password_worker_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void tells_right_from_wrong();
    void account_that_is_none_is_wrong_whatever_the_password();
    void same_password_is_compared_once();
    void waits_when_nobody_takes_what_it_found();
    void learns_how_long_it_takes();
    void ends_with_work_left();
};

void tst_password_worker_t::tells_right_from_wrong() {
    password_worker_t worker;
    worker.submit(check_of("alice", 1, "right"));
    worker.submit(check_of("alice", 2, "wrong"));
    QVERIFY(worker.wait_idle(10s));
    const auto verdicts = worker.take();
    QCOMPARE(verdicts.size(), 2u);
    for (const password_verdict_t& verdict : verdicts) {
        QCOMPARE(verdict.right, verdict.digest == digest_of(1));
        QCOMPARE(verdict.visitor.user, std::string("alice"));
        QCOMPARE(verdict.life, 1u);
    }
    QVERIFY(worker.take().empty());
}

void tst_password_worker_t::account_that_is_none_is_wrong_whatever_the_password() {
    password_worker_t worker;
    password_check_t check = check_of("nobody", 1, "right");
    check.life = 0;
    worker.submit(check);
    QVERIFY(worker.wait_idle(10s));
    QVERIFY(!worker.take().at(0).right);
}

void tst_password_worker_t::same_password_is_compared_once() {
    password_worker_t worker;
    const password_check_t check = slow_check();
    for (int i = 0; i < 5; ++i) {
        worker.submit(check);
    }
    QVERIFY(!worker.is_idle());
    QVERIFY(worker.wait_idle(20s));
    QCOMPARE(worker.take().size(), 1u);
}

void tst_password_worker_t::waits_when_nobody_takes_what_it_found() {
    password_worker_t worker;
    std::set<digest_t> asked;
    for (int i = 0; i < 1'500; ++i) {
        // One at a time, so that the queue pushes nobody out.
        worker.submit(check_of("alice", i));
        asked.insert(digest_of(i));
        worker.wait_idle(i < 1'024 ? 10s : 0s);
    }
    QVERIFY(!worker.is_idle());
    QCOMPARE(worker.take().size(), 1'024u);
    QVERIFY(worker.wait_idle(10s));
    QVERIFY(!worker.take().empty());
}

void tst_password_worker_t::learns_how_long_it_takes() {
    password_worker_t worker;
    QVERIFY(worker.estimate(1'000) >= 100us && worker.estimate(1'000) <= 10ms);
    for (int i = 0; i < 100; ++i) {
        worker.learn(1'000, 50ms);
    }
    QVERIFY(worker.estimate(1'000) > 49ms && worker.estimate(1'000) < 51ms);
    password_check_t check = check_of("alice", 0, "wrong", 1'000);
    for (int i = 0; i < 30; ++i) {
        check.digest = digest_of(i);
        worker.submit(check);
        QVERIFY(worker.wait_idle(10s));
    }
    QVERIFY(worker.estimate(1'000) < 40ms);
}

void tst_password_worker_t::ends_with_work_left() {
    password_check_t check = slow_check();
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!check.hash.matches(check.password));
    const qint64 one = clock.restart();
    {
        password_worker_t worker;
        for (int i = 0; i < 8; ++i) {
            check.digest = digest_of(i);
            worker.submit(check);
        }
    }
    QVERIFY(clock.elapsed() < 6 * one);
}

QTEST_GUILESS_MAIN(tst_password_worker_t)
#include "tst_password_worker_t.moc"
