#include "program/use_utf8.h"

#include <QTest>

class tst_use_utf8 : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        for (const char* name : {"LANG", "LC_CTYPE", "LC_ALL"}) {
            qunsetenv(name);
        }
    }

    void a_locale_that_is_not_utf8_is_replaced_data() {
        QTest::addColumn<QByteArray>("variable");
        QTest::addColumn<QByteArray>("given");
        QTest::addColumn<QByteArray>("all");
        const QByteArray utf8 = "C.UTF-8";
        QTest::newRow("bare") << QByteArray("LANG") << QByteArray() << utf8;
        QTest::newRow("plain C") << QByteArray("LC_ALL") << QByteArray("C") << utf8;
        QTest::newRow("not there") << QByteArray("LANG") << QByteArray("xx_XX.UTF-8") << utf8;
        QTest::newRow("said for all") << QByteArray("LC_ALL") << utf8 << utf8;
        QTest::newRow("said for letters") << QByteArray("LC_CTYPE") << utf8 << QByteArray();
        QTest::newRow("said in general") << QByteArray("LANG") << utf8 << QByteArray();
    }
    void a_locale_that_is_not_utf8_is_replaced() {
        QFETCH(QByteArray, variable);
        QFETCH(QByteArray, given);
        qputenv(variable.constData(), given);
        torlan::use_utf8();
        QTEST(qgetenv("LC_ALL"), "all");
    }
};

QTEST_GUILESS_MAIN(tst_use_utf8)
#include "tst_use_utf8.moc"
