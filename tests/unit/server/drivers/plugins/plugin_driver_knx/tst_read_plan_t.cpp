#include <QTest>

#include "drivers/plugins/plugin_driver_knx/read_plan_t.h"

using namespace knx;

class tst_read_plan_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_address_comes_once_in_order();
    void answered_one_is_not_asked();
    void what_is_new_is_asked_too();
};

namespace {

group_address_t address(int _raw) {
    return group_address_t(quint16(_raw));
}

QList<int> taken(read_plan_t& _plan) {
    QList<int> all;
    while (const auto next = _plan.take()) {
        all.append(next->raw());
    }
    return all;
}

}  // namespace

void tst_read_plan_t::each_address_comes_once_in_order() {
    read_plan_t plan;
    plan.start({address(3), address(1), address(3)});
    QCOMPARE(taken(plan), QList<int>({3, 1}));
    QVERIFY(plan.is_empty());
}

void tst_read_plan_t::answered_one_is_not_asked() {
    read_plan_t plan;
    plan.start({address(1), address(2), address(3)});
    plan.answered(address(1));
    plan.answered(address(3));
    plan.answered(address(9));
    QCOMPARE(plan.left(), QList<group_address_t>({address(2)}));
    QVERIFY(!plan.is_open(address(1)));
    QCOMPARE(taken(plan), QList<int>({2}));
}

void tst_read_plan_t::what_is_new_is_asked_too() {
    read_plan_t plan;
    plan.start({address(1)});
    plan.add({address(1), address(2), address(3)}, {address(2)});
    QCOMPARE(taken(plan), QList<int>({1, 3}));
}

QTEST_GUILESS_MAIN(tst_read_plan_t)
#include "tst_read_plan_t.moc"
