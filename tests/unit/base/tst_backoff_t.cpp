#include <QTest>
#include <set>

#include "base/backoff_t.h"

using base::backoff_t;
using std::chrono::milliseconds;

class tst_backoff_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void next_doubles_up_to_the_limit();
    void next_is_drawn_at_random();
    void reset_starts_again();
    void odd_limits_are_mended();
};

void tst_backoff_t::next_doubles_up_to_the_limit() {
    backoff_t backoff(milliseconds(100), milliseconds(1'000));
    for (const int whole : {100, 200, 400, 800, 1'000, 1'000, 1'000}) {
        const auto wait = backoff.next().count();
        QVERIFY2(wait >= whole / 2 && wait <= whole, qPrintable(QString::number(wait)));
    }
}

void tst_backoff_t::next_is_drawn_at_random() {
    backoff_t backoff(milliseconds(1'000'000), milliseconds(1'000'000));
    std::set<milliseconds> seen;
    for (int i = 0; i < 10; ++i) {
        seen.insert(backoff.next());
    }
    QVERIFY(seen.size() > 1);
}

void tst_backoff_t::reset_starts_again() {
    backoff_t backoff(milliseconds(10), milliseconds(10'000));
    for (int i = 0; i < 10; ++i) {
        backoff.next();
    }
    backoff.reset();
    QVERIFY(backoff.next() <= milliseconds(10));
}

void tst_backoff_t::odd_limits_are_mended() {
    backoff_t backoff(milliseconds(0), milliseconds(-5));
    QCOMPARE(backoff.next(), milliseconds(1));
    QCOMPARE(backoff.next(), milliseconds(1));
}

QTEST_GUILESS_MAIN(tst_backoff_t)
#include "tst_backoff_t.moc"
