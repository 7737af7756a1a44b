#include "broker/plugin/account_name.h"

#include <QTest>

using namespace broker::plugin;

class tst_account_name : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void rule_data();
    void rule();
};

void tst_account_name::rule_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("good");
    const auto row = [](const QByteArray& _name, bool _good) {
        QTest::newRow(_name.left(20).constData()) << _name << _good;
    };
    row("alice", true);
    row("A.b_c-9", true);
    row("-", true);
    row(QByteArray(64, 'a'), true);
    row(QByteArray(65, 'b'), false);
    row("", false);
    row("@torlan", false);
    row("a+", false);
    row("a#", false);
    row("a/b", false);
    row("a b", false);
    row("\xc3\xa4", false);
    row("a\n", false);
    row(QByteArray("dave\0x", 6), false);
}

void tst_account_name::rule() {
    QFETCH(QByteArray, name);
    QTEST(is_account_name({name.constData(), std::size_t(name.size())}), "good");
}

QTEST_GUILESS_MAIN(tst_account_name)
#include "tst_account_name.moc"
