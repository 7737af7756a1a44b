#include "base/small_table_t.h"

#include <QTest>

using table_t = base::small_table_t<int>;
using hash_t = QHash<QString, int>;

class tst_small_table_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void an_empty_one_has_nothing() {
        table_t table;
        QVERIFY(table.isEmpty());
        QVERIFY(!table.contains("a"));
        QCOMPARE(table.value("a"), 0);
        QVERIFY(!table.remove("a"));
        QCOMPARE(table.keys(), QStringList());
    }

    void it_holds_what_a_hash_would() {
        table_t table;
        hash_t hash;
        for (int step = 0; step < 2000; ++step) {
            const QString key = QString::number(step * 37 % 101);
            if (step % 3 == 2) {
                QCOMPARE(table.remove(key), hash.remove(key));
            } else {
                table.insert(key, step);
                hash.insert(key, step);
            }
            QCOMPARE(table.size(), hash.size());
        }
        QCOMPARE(table.to_hash(), hash);
        for (int number = 0; number < 101; ++number) {
            const QString key = QString::number(number);
            QCOMPARE(table.contains(key), hash.contains(key));
            QCOMPARE(table.value(key), hash.value(key));
        }
        QStringList keys = table.keys();
        QStringList wanted = hash.keys();
        keys.sort();
        wanted.sort();
        QCOMPARE(keys, wanted);
        table.clear();
        QVERIFY(table.isEmpty());
    }

    void equal_ones_share_one_copy_until_one_changes() {
        table_t one = filled();
        table_t other = filled();
        QVERIFY(one == other);
        QVERIFY(!one.is_shared_with(other));
        other.share(one);
        QVERIFY(one.is_shared_with(other));
        other.insert("b", 2);
        QVERIFY(one.is_shared_with(other));
        other.insert("b", 3);
        QCOMPARE(one.value("b"), 2);
        QCOMPARE(other.value("b"), 3);
        other.share(one);
        QVERIFY(!one.is_shared_with(other));
    }

 private:
    static table_t filled() {
        table_t table;
        table.insert("a", 1);
        table.insert("b", 2);
        return table;
    }
};

QTEST_APPLESS_MAIN(tst_small_table_t)
#include "tst_small_table_t.moc"
