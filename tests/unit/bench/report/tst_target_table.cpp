#include "bench/report/target_table.h"

#include <QJsonArray>
#include <QtTest>

using namespace bench;

namespace {

QJsonObject lane(const QString& _name, const QJsonArray& _rate) {
    return {{"name", _name}, {"rate", _rate}, {"median", _rate}, {"p99", _rate}};
}

QJsonObject read_one(int _qos, const QJsonArray& _ours, const QJsonArray& _raw) {
    return {{"operation", "read one"},
            {"qos", _qos},
            {"users", 1},
            {"in_flight", 100},
            {"lanes", QJsonArray{lane("torlan", _ours), lane("raw tcp", _raw)}}};
}

QJsonObject start(double _heard_at_ready) {
    return {{"elements", 10'000},    {"users", 100},
            {"expected", 1'000'000}, {"heard", 1'000'000},
            {"start_s", 26},         {"raw_s", 20},
            {"server_peak", 5e8},    {"heard_at_ready", _heard_at_ready}};
}

}  // namespace

class tst_target_table : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_target_is_met_or_not_data() {
        QTest::addColumn<QJsonObject>("results");
        QTest::addColumn<QString>("line");
        QTest::newRow("nothing") << QJsonObject()
                                 << "| push: rate, of raw | at least 0.90 | not measured | no |";
        QTest::newRow("the worst row counts")
            << QJsonObject{{"requests",
                            QJsonArray{read_one(2, {3, 3}, {2, 2}), read_one(0, {1, 1}, {2, 2})}}}
            << "| read one, 100 in flight: rate, of raw TCP | at least 1.00 | 0.50 | no |";
        QTest::newRow("met") << QJsonObject{{"requests", QJsonArray{read_one(2, {2}, {2})}}}
                             << "| read one, 100 in flight: rate, of raw TCP | at least 1.00 | "
                                "1.00 | yes |";
        QTest::newRow("at most, met")
            << QJsonObject{{"starts", QJsonArray{start(1'000'000)}}}
            << "| start of 10,000 states and more: time, of raw | at most 1.30 | 1.30 | yes |";
        QTest::newRow("not there when ready")
            << QJsonObject{{"starts", QJsonArray{start(500'000)}}}
            << "is there when \"ready\" is said | at least 1.00 | 0.50 | no |";
    }
    void a_target_is_met_or_not() {
        QFETCH(QJsonObject, results);
        QFETCH(QString, line);
        QVERIFY2(target_table(results).contains(line), qPrintable(target_table(results)));
    }
};

QTEST_GUILESS_MAIN(tst_target_table)
#include "tst_target_table.moc"
