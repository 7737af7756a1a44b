#include "ets/project_password.h"

#include <QTest>

class tst_project_password : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void candidates_data() {
        QTest::addColumn<QString>("password");
        QTest::addColumn<QList<QByteArray>>("candidates");
        // The first ones were computed by another program.
        QTest::newRow("plain") << "open sesame"
                               << QList<QByteArray>{"FTHVJDUcSgO8aFJhKQ/Sh1rAZsMdHBcCzkPFTmWmSLI=",
                                                    "open sesame"};
        QTest::newRow("letters of one byte elsewhere")
            << "schlüssel"
            << QList<QByteArray>{"GLbAieOxfuVtu7uAFM828eT24/H+aukza3fR7cP3ql0=", "schl\xc3\xbcssel",
                                 "schl\xfcssel"};
    }
    void candidates() {
        QFETCH(QString, password);
        QTEST(ets::zip_passwords(password), "candidates");
    }
};

QTEST_GUILESS_MAIN(tst_project_password)
#include "tst_project_password.moc"
