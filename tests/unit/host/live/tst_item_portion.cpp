#include "live/item_portion.h"

#include <QTest>

using namespace database::live;

class tst_item_portion : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void drivers_have_little_to_do_at_a_time_data() {
        QTest::addColumn<int>("waiting");
        QTest::addColumn<int>("listeners");
        QTest::addColumn<int>("under_way");
        QTest::addColumn<bool>("elements_wait");
        QTest::addColumn<int>("items");
        QTest::addColumn<bool>("as_elements");

        QTest::newRow("nobody listens") << 3 << 0 << 0 << false << 8 << false;
        QTest::newRow("a home") << 60 << 40 << 1 << false << 8 << false;
        QTest::newRow("a batch, drivers idle") << 64 << 1'000 << 0 << false << 8 << false;
        QTest::newRow("large, drivers idle") << 500 << 10'000 << 0 << false << 1 << false;
        QTest::newRow("large, one waits") << 1 << 10'000 << 1 << false << 1 << false;
        QTest::newRow("large, two wait") << 2 << 10'000 << 1 << false << 2 << true;
        QTest::newRow("a thousand, some wait") << 16 << 1'000 << 1 << false << 8 << false;
        QTest::newRow("a thousand, many wait") << 17 << 1'000 << 1 << false << 17 << true;
        QTest::newRow("no more than a portion") << 500 << 1'000 << 1 << false << 64 << true;
        QTest::newRow("more than events that are counted")
            << 1 << 30'000 << 0 << false << 1 << false;
        QTest::newRow("behind others") << 1 << 100 << 0 << true << 1 << true;
    }
    void drivers_have_little_to_do_at_a_time() {
        QFETCH(int, waiting);
        QFETCH(int, listeners);
        QFETCH(int, under_way);
        QFETCH(bool, elements_wait);
        const item_portion_t next = next_item_portion(waiting, listeners, under_way, elements_wait);
        QTEST(int(next.items), "items");
        QTEST(next.as_elements, "as_elements");
    }
};

QTEST_APPLESS_MAIN(tst_item_portion)
#include "tst_item_portion.moc"
