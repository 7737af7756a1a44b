#include "line/completion.h"

#include <QTest>

#include "unit/apps/torlanctl/line/small_table.h"

using namespace torlan;

class tst_completion : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void place_says_what_is_wanted_data() {
        QTest::addColumn<QStringList>("typed");
        QTest::addColumn<QString>("wanted");
        const auto row = [](const QStringList& _typed, const char* _wanted) {
            QTest::newRow(qPrintable(_typed.join('|'))) << _typed << QString(_wanted);
        };
        row({""}, "set,list,user,element,grant :");
        row({"us"}, "set,list,user,element,grant :us");
        row({"user", ""}, "add,remove :");
        row({"nothing", ""}, " :");
        row({"set", "i-"}, " ITEM:i-");
        row({"set", "i", ""}, " VALUE:");
        row({"set", "i", "1", ""}, " :");
        row({"list", "--j"}, "--data,--help,--version,--json :--j");
        row({"--"}, "--data,--help,--version :--");
        row({"user", "remove", "--", "-"}, " USER:-");
        row({"user", "add", "--file", ""}, " FILE:");
        row({"user", "add", "--file=x"}, " FILE:x");
        row({"user", "add", "--file", "=", "x"}, " FILE:x");
        row({"user", "--file", "f", "add", ""}, " NAME:");
        row({"grant", "u", ""}, " ELEMENT:");
        row({"grant", "--all", "u", ""}, " PERMISSION:");
        row({"element", "set", "e", "ex"}, " FUNCTION:ex");
        row({"element", "set", "e", "execute", "=", "i-"}, " ITEM:i-");
        row({"element", "set", "e", "a=i", "execute", "="}, " ITEM:");
        row({"element", "set", "e", "--writable", ""}, "yes,no :");
        row({"--data", ""}, " DIR:");
    }
    void place_says_what_is_wanted() {
        QFETCH(QStringList, typed);
        const wanted_t wanted = completion_of(typed, small_table());
        QTEST(wanted.words.join(',') + ' ' + wanted.kind + ':' + wanted.begun, "wanted");
    }

    void folder_is_the_one_that_is_typed_data() {
        QTest::addColumn<QStringList>("typed");
        QTest::addColumn<QString>("data");
        QTest::newRow("none") << QStringList{"set", ""} << "var";
        QTest::newRow("behind") << QStringList{"--data", "x", "set", ""} << "x";
        QTest::newRow("joined") << QStringList{"--data=x", "set", ""} << "x";
        QTest::newRow("taken apart") << QStringList{"--data", "=", "x", "set", ""} << "x";
    }
    void folder_is_the_one_that_is_typed() {
        QFETCH(QStringList, typed);
        QTEST(completion_of(typed, small_table()).data, "data");
    }
};

QTEST_GUILESS_MAIN(tst_completion)
#include "tst_completion.moc"
