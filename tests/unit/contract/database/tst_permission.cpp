#include "database/permission.h"

#include <QTest>

using namespace database;

class tst_permission : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void each_word_stands_for_its_bits_data() {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("bits");
        QTest::newRow("nothing") << "deny" << 0;
        QTest::newRow("1") << "read" << 1;
        QTest::newRow("2") << "write" << 2;
        QTest::newRow("both") << "readwrite" << 3;
    }
    void each_word_stands_for_its_bits() {
        QFETCH(QString, word);
        QFETCH(int, bits);
        QCOMPARE(permission::word(bits), word);
        QCOMPARE(permission::bits(word).value_or(-1), bits);
    }

    void other_words_and_numbers_are_none() {
        for (const char* word : {"", "Read", "read ", "all"}) {
            QVERIFY2(!permission::bits(QString::fromLatin1(word)), word);
        }
        QCOMPARE(permission::word(-1), QString());
        QCOMPARE(permission::word(4), QString());
    }

    void one_bit_of_the_mask_suffices_data() {
        QTest::addColumn<quint64>("grant");
        QTest::addColumn<uint>("mask");
        QTest::addColumn<int>("code");
        const auto row = [](const char* _name, quint64 _grant, uint _mask, int _code) {
            QTest::newRow(_name) << _grant << _mask << _code;
        };
        row("no bits", 0, 3, 401);
        row("read to read", 1, 1, 202);
        row("read to write", 1, 2, 401);
        row("write to read", 2, 1, 401);
        row("write to write", 2, 2, 202);
        row("read to either", 1, 3, 202);
        row("write to either", 2, 3, 202);
        row("both to both", 3, 3, 202);
        row("no mask", 3, 0, 401);
        row("beyond the low 32 bits", quint64(1) << 32, 1, 401);
        row("the sign alone", quint64(1) << 31, quint32(1) << 31, 401);
    }
    void one_bit_of_the_mask_suffices() {
        QFETCH(quint64, grant);
        QFETCH(uint, mask);
        QTEST(permission::verdict(grant, mask), "code");
        QCOMPARE(permission::allows(grant, mask), permission::verdict(grant, mask) == 202);
    }
};

QTEST_GUILESS_MAIN(tst_permission)
#include "tst_permission.moc"
