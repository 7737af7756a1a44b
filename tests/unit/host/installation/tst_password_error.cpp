#include <QTest>

#include "installation/password_error.h"

class tst_password_error : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void passwords_that_are_refused_data();
    void passwords_that_are_refused();
};

void tst_password_error::passwords_that_are_refused_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("good") << "pässword \"1\" $7$"
                          << "";
    QTest::newRow("longest") << QString(256, 'x') << "";
    QTest::newRow("empty") << ""
                           << "must not be empty";
    QTest::newRow("long") << QString(257, 'x') << "must be at most 256 characters long";
    QTest::newRow("tabulator") << "a\tb"
                               << "must be text without control characters";
}

void tst_password_error::passwords_that_are_refused() {
    QFETCH(QString, text);
    QTEST(database::installation::password_error(text), "error");
}

QTEST_GUILESS_MAIN(tst_password_error)
#include "tst_password_error.moc"
