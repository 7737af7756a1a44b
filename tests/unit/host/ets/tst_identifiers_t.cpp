#include "ets/identifiers_t.h"

#include <QTest>

class tst_identifiers_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void come_from_addresses() {
        ets::identifiers_t ids;
        QCOMPARE(ids.take("e", 2305, {}), "e-1-1-1");
        QCOMPARE(ids.take("i", 65535, {}), "i-31-7-255");
    }

    void a_taken_one_gets_what_distinguishes_it_or_a_number_data() {
        QTest::addColumn<QString>("distinction");
        QTest::addColumn<QString>("second");
        QTest::newRow("distinction") << "F-7"
                                     << "e-1-1-1-F-7";
        QTest::newRow("none") << ""
                              << "e-1-1-1-n2";
        QTest::newRow("one that no identifier may hold") << "ä b"
                                                         << "e-1-1-1-n2";
        QTest::newRow("a reserved word") << "request"
                                         << "e-1-1-1-n2";
        QTest::newRow("too long") << QString(64, u'x') << "e-1-1-1-n2";
    }
    void a_taken_one_gets_what_distinguishes_it_or_a_number() {
        QFETCH(QString, distinction);
        ets::identifiers_t ids;
        ids.take("e", 2305, distinction);
        QTEST(ids.take("e", 2305, distinction), "second");
        QVERIFY(ids.take("e", 2305, distinction).startsWith("e-1-1-1-n"));
    }
};

QTEST_GUILESS_MAIN(tst_identifiers_t)
#include "tst_identifiers_t.moc"
