#include <QTest>

#include "unit/apps/torlanctl/terminal_session_t.h"

/// What removes something asks on a terminal, and nowhere else.
class tst_confirmation : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        torlanctl = std::make_unique<torlanctl_t>();
        QCOMPARE(torlanctl->import_small_home().status, 0);
    }

    void terminal_is_asked_data() {
        QTest::addColumn<QByteArray>("typed");
        QTest::addColumn<int>("status");
        QTest::newRow("yes") << QByteArray("y\n") << 0;
        QTest::newRow("the whole word") << QByteArray("YES\n") << 0;
        QTest::newRow("no") << QByteArray("n\n") << 1;
        QTest::newRow("nothing") << QByteArray("\n") << 1;
        QTest::newRow("the end") << QByteArray("\x04") << 1;
    }
    void terminal_is_asked() {
        QFETCH(QByteArray, typed);
        terminal_session_t session(*torlanctl, {"user", "remove", "alice"});
        const QString shown = session.answer(typed);
        QVERIFY2(shown.startsWith("This removes the user alice with 3 grants. Go on? [y/N] "),
                 qPrintable(shown));
        QTEST(session.process.exitCode(), "status");
        QCOMPARE(torlanctl->stored().users.contains("u-alice"), session.process.exitCode() == 1);
    }

    void yes_is_not_asked() {
        terminal_session_t session(*torlanctl, {"element", "remove", "e-lamp", "--yes"});
        QVERIFY(session.process.waitForFinished());
        QCOMPARE(session.process.exitCode(), 0);
        QVERIFY(!torlanctl->stored().elements.contains("e-lamp"));
    }

 private:
    std::unique_ptr<torlanctl_t> torlanctl;
};

QTEST_GUILESS_MAIN(tst_confirmation)
#include "tst_confirmation.moc"
