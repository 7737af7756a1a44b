#include "broker/plugin/time_budget_t.h"

#include <QTest>

using namespace broker::plugin;
using namespace std::chrono_literals;

class tst_time_budget_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void nothing_longer_than_the_limit_is_allowed();
    void zero_allows_nothing();
    void spent_time_comes_back_slowly();
    void it_never_saves_up_more_than_twice_the_limit();
    void one_that_took_longer_is_paid_back();
};

void tst_time_budget_t::nothing_longer_than_the_limit_is_allowed() {
    time_budget_t budget(20ms);
    QVERIFY(budget.allows(20ms, 1'000s));
    QVERIFY(!budget.allows(20'001us, 1'000s));
}

void tst_time_budget_t::zero_allows_nothing() {
    time_budget_t budget(0ms);
    QVERIFY(!budget.allows(1us, 1'000s));
}

void tst_time_budget_t::spent_time_comes_back_slowly() {
    time_budget_t budget(20ms);
    QVERIFY(budget.allows(1us, 1'000s));
    budget.spend(40ms);
    QVERIFY(!budget.allows(2ms, 1'000s));
    QVERIFY(!budget.allows(2ms, 1'000s + 99ms));
    QVERIFY(budget.allows(2ms, 1'000s + 100ms));
    budget.spend(2ms);
    QVERIFY(!budget.allows(2ms, 1'000s + 100ms));
    QVERIFY(budget.allows(20ms, 1'001s + 100ms));
}

void tst_time_budget_t::it_never_saves_up_more_than_twice_the_limit() {
    time_budget_t budget(20ms);
    QVERIFY(budget.allows(20ms, 1'000'000s));
    budget.spend(20ms);
    QVERIFY(budget.allows(20ms, 1'000'000s));
    budget.spend(20ms);
    QVERIFY(!budget.allows(1us, 1'000'000s));
}

void tst_time_budget_t::one_that_took_longer_is_paid_back() {
    time_budget_t budget(20ms);
    QVERIFY(budget.allows(20ms, 1'000s));
    budget.spend(140ms);
    QVERIFY(!budget.allows(1us, 1'004s));
    QVERIFY(budget.allows(1us, 1'006s));
}

QTEST_GUILESS_MAIN(tst_time_budget_t)
#include "tst_time_budget_t.moc"
