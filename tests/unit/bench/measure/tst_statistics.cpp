#include "bench/measure/statistics.h"

#include <QtTest>

using namespace bench;

class tst_statistics : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_quantile_is_the_nearest_rank_data() {
        QTest::addColumn<QList<double>>("values");
        QTest::addColumn<double>("part");
        QTest::addColumn<double>("found");
        QTest::newRow("none") << QList<double>{} << 0.5 << 0.0;
        QTest::newRow("one") << QList<double>{7} << 0.99 << 7.0;
        QTest::newRow("middle of three") << QList<double>{3, 1, 2} << 0.5 << 2.0;
        QTest::newRow("lower of two") << QList<double>{2, 1} << 0.5 << 1.0;
        QTest::newRow("last") << QList<double>{2, 9, 1} << 1.0 << 9.0;
        QTest::newRow("first") << QList<double>{2, 9, 1} << 0.0 << 1.0;
    }
    void a_quantile_is_the_nearest_rank() {
        QFETCH(QList<double>, values);
        QFETCH(double, part);
        QTEST(quantile({values.begin(), values.end()}, part), "found");
    }

    void percentiles_are_101_and_grow() {
        std::vector<double> values;
        for (int i = 1000; i > 0; --i) {
            values.push_back(i);
        }
        const std::vector<double> found = percentiles(values);
        QCOMPARE(found.size(), std::size_t(101));
        QCOMPARE(found[0], 1.0);
        QCOMPARE(found[99], 990.0);
        QCOMPARE(found[100], 1000.0);
    }

    void a_ratio_is_of_the_same_round() {
        QCOMPARE(ratios({1, 6, 9}, {2, 3, 0}), (std::vector<double>{0.5, 2, 0}));
        QCOMPARE(ratios({1, 2}, {1}), (std::vector<double>{1}));
    }
};

QTEST_GUILESS_MAIN(tst_statistics)
#include "tst_statistics.moc"
