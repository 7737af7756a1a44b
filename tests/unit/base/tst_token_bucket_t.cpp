#include <QTest>

#include "base/token_bucket_t.h"

using base::token_bucket_t;
using std::chrono::milliseconds;

class tst_token_bucket_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_second_s_worth_is_granted_at_once_and_refilled() {
        token_bucket_t bucket(3);
        QCOMPARE(granted(bucket, 1, milliseconds(10)), 3);
        QCOMPARE(granted(bucket, 1, milliseconds(10)), 0);
        QCOMPARE(granted(bucket, 1, milliseconds(1010)), 3);
        QCOMPARE(granted(bucket, 1, milliseconds(100'000)), 3);
    }

    void what_costs_more_than_there_is_goes_on_credit() {
        token_bucket_t bucket(10);
        QVERIFY(bucket.take(50, milliseconds(0)));
        QVERIFY(!bucket.take(1, milliseconds(4000)));
        QVERIFY(bucket.take(1, milliseconds(4001)));
    }

    void it_is_full_again_after_a_second_s_worth() {
        token_bucket_t bucket(10);
        QVERIFY(bucket.is_full(milliseconds(0)));
        QVERIFY(bucket.take(10, milliseconds(0)));
        QVERIFY(!bucket.is_full(milliseconds(999)));
        QVERIFY(bucket.is_full(milliseconds(1000)));
    }

    void nothing_per_second_is_no_limit() {
        token_bucket_t bucket(0);
        QCOMPARE(granted(bucket, 1000, milliseconds(0)), 20);
    }

 private:
    /// Of twenty.
    static int granted(token_bucket_t& _bucket, double _cost, milliseconds _now) {
        int count = 0;
        for (int i = 0; i < 20; ++i) {
            count += _bucket.take(_cost, _now) ? 1 : 0;
        }
        return count;
    }
};

QTEST_GUILESS_MAIN(tst_token_bucket_t)
#include "tst_token_bucket_t.moc"
