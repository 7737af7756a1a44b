#include <QTest>

#include "accounts/broker_hash.h"
#include "unit/apps/torlanctl/terminal_session_t.h"

/// How a password gets in.
class tst_password : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void first_line_is_the_password_data();
    void first_line_is_the_password();
    void refused_password_is_not_repeated_data();
    void refused_password_is_not_repeated();
    void terminal_shows_nothing_of_it();
    void interruption_adds_nobody();
};

void tst_password::first_line_is_the_password_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("password");
    QTest::newRow("line") << QByteArray("secret\n") << "secret";
    QTest::newRow("no line end") << QByteArray("secret") << "secret";
    QTest::newRow("line end of another system") << QByteArray("secret\r\n") << "secret";
    QTest::newRow("two lines") << QByteArray("secret\nother\n") << "secret";
    QTest::newRow("blanks belong to it") << QByteArray("  s \n") << "  s ";
    QTest::newRow("longest") << QString(256, u'ü').toUtf8() + "\n" << QString(256, u'ü');
}

void tst_password::first_line_is_the_password() {
    QFETCH(QByteArray, input);
    QFETCH(QString, password);
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    QCOMPARE(torlanctl({"user", "add", "carol"}, input).error, QString());
    const auto users = torlanctl.stored().users;
    QVERIFY(accounts::verify_password(password, users.last().password_hash));
}

void tst_password::refused_password_is_not_repeated_data() {
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QString>("error");
    QTest::newRow("nothing") << QByteArray() << "must not be empty.";
    QTest::newRow("empty line") << QByteArray("\nsecret\n") << "must not be empty.";
    QTest::newRow("too long") << QByteArray(257, 'x') << "must be at most 256 characters long.";
    QTest::newRow("endless") << QByteArray(1 << 20, 'x') << "must be at most 256 characters long.";
    QTest::newRow("control character")
        << QByteArray("se\tcret\n") << "must be text without control characters.";
    QTest::newRow("not UTF-8") << QByteArray("se\xff\n") << "must be UTF-8 text.";
}

void tst_password::refused_password_is_not_repeated() {
    QFETCH(QByteArray, input);
    QFETCH(QString, error);
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    const call_t call = torlanctl({"user", "add", "carol"}, input);
    QCOMPARE(call.error, "torlanctl: The password " + error);
    QCOMPARE(call.status, 1);
    QCOMPARE(torlanctl.stored().users.size(), 2);
}

void tst_password::terminal_shows_nothing_of_it() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    terminal_session_t session(torlanctl, {"user", "add", "carol"});
    const QString shown = session.answer("hushhush\n");
    QCOMPARE(shown.simplified(), "Password:");
    QCOMPARE(session.process.exitCode(), 0);
    const auto users = torlanctl.stored().users;
    QVERIFY(accounts::verify_password("hushhush", users.last().password_hash));
}

void tst_password::interruption_adds_nobody() {
    const torlanctl_t torlanctl;
    QCOMPARE(torlanctl.import_small_home().status, 0);
    terminal_session_t session(torlanctl, {"user", "add", "carol"});
    session.answer("hush\x03");
    QCOMPARE(session.process.exitCode(), 1);
    QCOMPARE(torlanctl.stored().users.size(), 2);
}

QTEST_GUILESS_MAIN(tst_password)
#include "tst_password.moc"
