#include "accounts/control_text.h"

#include <QTest>

using namespace accounts;

class tst_control_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void everything_is_told();
    void change_is_told();
    void what_is_no_word_is_left_out_data();
    void what_is_no_word_is_left_out();
};

void tst_control_text::everything_is_told() {
    QCOMPARE(control_text::all(17, "home/1/connection",
                               {{{"alice", "$7$a", {}}, {"bob", "$7$b", {}}}, {"carol"}, {"bob"}}),
             QByteArray("all 17\nconnection home/1/connection\nremove carol\nuser alice $7$a\n"
                        "user bob $7$b\nwithdraw bob\nend\n"));
    QCOMPARE(control_text::all(1, {}, {}), QByteArray("all 1\nconnection \nend\n"));
}

void tst_control_text::change_is_told() {
    QCOMPARE(control_text::change(18, {{{"alice", "$7$a", {}}}, {"alice"}, {"bob"}}),
             QByteArray("change 18\nremove alice\nuser alice $7$a\nwithdraw bob\nend\n"));
    QCOMPARE(control_text::seen(4), QByteArray("seen 4\nend\n"));
    QVERIFY(control_text::change_t().is_empty());
    QVERIFY(!(control_text::change_t{{}, {}, {"bob"}}).is_empty());
}

void tst_control_text::what_is_no_word_is_left_out_data() {
    QTest::addColumn<QString>("word");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << QString("a b");
    QTest::newRow("line") << QString("a\nremove bob");
    QTest::newRow("NUL") << QString(QChar(0));
    QTest::newRow("control") << QString(QChar(0x7f));
    QTest::newRow("letter") << QString::fromUtf8("ä");
}

void tst_control_text::what_is_no_word_is_left_out() {
    QFETCH(QString, word);
    QVERIFY(!control_text::is_word(word));
    QCOMPARE(
        control_text::change(
            1, {{{word, "$7$a", {}}, {"bob", word, {}}, {"carol", "$7$c", {}}}, {word}, {word}}),
        QByteArray("change 1\nuser carol $7$c\nend\n"));
}

QTEST_GUILESS_MAIN(tst_control_text)
#include "tst_control_text.moc"
