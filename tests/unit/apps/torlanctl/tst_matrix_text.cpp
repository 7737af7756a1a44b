#include "matrix_text.h"

#include <QTest>

using namespace torlan;

class tst_matrix_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void tables_are_as_wide_as_a_line_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("tables");
        QTest::newRow("all") << 100 << "alice bob x carol";
        QTest::newRow("just all") << 28 << "alice bob x carol";
        QTest::newRow("two tables") << 27 << "alice bob x|carol";
        QTest::newRow("one each") << 1 << "alice|bob|x|carol";
    }
    void tables_are_as_wide_as_a_line() {
        QFETCH(int, width);
        QStringList tables;
        for (const QStringList& names : columns_of({"alice", "bob", "x", "carol"}, 5, width)) {
            tables.append(names.join(' '));
        }
        QTEST(tables.join('|'), "tables");
    }

    void nobody_needs_no_table() { QVERIFY(columns_of({}, 5, 80).isEmpty()); }

    void words_stand_under_their_names() {
        const QStringList names{"alice", "x", "bob"};
        QCOMPARE(matrix_line({}, 4, names, names), "      alice  x   bob");
        QCOMPARE(matrix_line("e-1", 4, names, {"rw", "rw", "."}), "e-1   rw     rw  .");
    }
};

QTEST_GUILESS_MAIN(tst_matrix_text)
#include "tst_matrix_text.moc"
