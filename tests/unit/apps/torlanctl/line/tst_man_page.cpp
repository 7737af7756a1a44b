#include "line/man_page.h"

#include <QTest>

#include "unit/apps/torlanctl/line/small_table.h"

using namespace torlan;

class tst_man_page : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void texts_are_no_instructions() {
        commands_t table = small_table();
        table[0].more = ".so /etc/passwd\n'and a \\fBbackslash\\fR";
        const QString page = man_page(table, "1.2");
        QVERIFY(page.contains("\n\\&.so /etc/passwd 'and a \\efBbackslash\\efR\n"));
        QVERIFY(page.startsWith(".TH TORLANCTL 1 \"\" \"torlan 1.2\" \"torlan\"\n"));
    }

    void hidden_commands_are_left_out() {
        const QString page = man_page(small_table(), "1.2");
        QVERIFY(page.contains("\n.SS \"user remove USER\"\n"));
        QVERIFY(!page.contains("secret"));
    }
};

QTEST_GUILESS_MAIN(tst_man_page)
#include "tst_man_page.moc"
