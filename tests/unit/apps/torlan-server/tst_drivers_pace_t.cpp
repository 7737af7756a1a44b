#include "drivers_pace_t.h"

#include <QTest>

#include "endpoint/mqtt_endpoint_t.h"

using database::live::portions_t;
using torlan::drivers_pace_t;

/// With an endpoint that is not connected, which gives marks back at once.
class tst_drivers_pace_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_drivers_queue_in_four_hops_comes_first() {
        comunication::mqtt_endpoint_t endpoint({});
        drivers_pace_t pace(&endpoint);
        QStringList order;
        portions_t portions([](const QString&) {}, 1);
        connect(&portions, &portions_t::over, this, [&order]() { order += "left"; });
        pace.set_pace_of(&portions);
        QMetaObject::invokeMethod(
            this, [&]() { hop(4, &order); }, Qt::QueuedConnection);
        portions.add({"a"});
        QTRY_COMPARE(order, QStringList({"published", "left"}));
    }

    void each_portion_is_answered_to_its_own() {
        comunication::mqtt_endpoint_t endpoint({});
        drivers_pace_t pace(&endpoint);
        QStringList order;
        portions_t one([&order](const QString& _id) { order += _id; }, 1);
        portions_t other([&order](const QString& _id) { order += _id; }, 2);
        pace.set_pace_of(&one);
        pace.set_pace_of(&other);
        one.add({"a", "b", "c"});
        other.add({"1", "2", "3", "4", "5", "6"});
        QCOMPARE(order, QStringList({"a", "b", "1", "2", "3", "4"}));
        QTRY_COMPARE(order.size(), 9);
        QTRY_VERIFY(!one.is_busy() && !other.is_busy());
    }

    void portions_that_are_gone_are_answered_no_more() {
        comunication::mqtt_endpoint_t endpoint({});
        drivers_pace_t pace(&endpoint);
        portions_t stays([](const QString&) {}, 1);
        {
            portions_t goes([](const QString&) {}, 1);
            pace.set_pace_of(&goes);
            goes.add({"a"});
        }
        pace.set_pace_of(&stays);
        stays.add({"a"});
        QTRY_VERIFY(!stays.is_busy());
    }

 private:
    void hop(int _left, QStringList* _order) {
        if (_left == 0) {
            _order->append("published");
            return;
        }
        QMetaObject::invokeMethod(
            this, [=, this]() { hop(_left - 1, _order); }, Qt::QueuedConnection);
    }
};

QTEST_GUILESS_MAIN(tst_drivers_pace_t)
#include "tst_drivers_pace_t.moc"
