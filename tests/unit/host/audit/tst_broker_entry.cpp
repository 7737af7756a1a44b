#include "audit/broker_entry.h"

#include <QTest>

class tst_broker_entry : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void kinds_data() {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("result");
        QTest::newRow("signed-in") << "sign-in"
                                   << "ok";
        QTest::newRow("departed") << "departure"
                                  << "ok";
        QTest::newRow("failed") << "sign-in"
                                << "failed";
        QTest::newRow("unchecked") << "sign-in"
                                   << "unchecked";
        QTest::newRow("refused") << "sign-in"
                                 << "refused";
        QTest::newRow("write-refused") << "publish"
                                       << "refused";
        QTest::newRow("subscribe-refused") << "subscribe"
                                           << "refused";
        QTest::newRow("flooding") << "publish"
                                  << "flooding";
        QTest::newRow("some-day") << "some-day"
                                  << "";
    }
    void kinds() {
        QFETCH(QString, operation);
        QFETCH(QString, result);
        const audit::entry_t entry = audit::broker_entry(
            {QTest::currentDataTag(), 1, 5, 5, "alice", "phone", "127.0.0.1", "why"});
        QCOMPARE(entry.operation, operation);
        QCOMPARE(entry.result, result);
        QCOMPARE(entry.user, QString("alice"));
        QCOMPARE(entry.client, QString("phone"));
        QCOMPARE(entry.address, QString("127.0.0.1"));
        QCOMPARE(entry.detail, QString("why"));
        QCOMPARE(entry.time, qint64(5'000));
        QCOMPARE(entry.since, qint64(0));
    }

    void several_keep_their_time() {
        const audit::entry_t entry =
            audit::broker_entry({"failed", 3, 5, 9, "alice", "phone", "127.0.0.1", {}});
        QCOMPARE(entry.count, qint64(3));
        QCOMPARE(entry.since, qint64(5'000));
        QCOMPARE(entry.time, qint64(9'000));
    }
};

QTEST_GUILESS_MAIN(tst_broker_entry)
#include "tst_broker_entry.moc"
