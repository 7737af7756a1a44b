#include "program/begin_program.h"

#include <signal.h>

#include <QCoreApplication>
#include <QTest>

#include "program/version.h"

/// begin_program() before the application object, as in a program.
class tst_begin_program : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void the_application_has_its_name_and_the_version() {
        QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("torlan-x"));
        QCOMPARE(QCoreApplication::applicationVersion(), QStringLiteral(PROJECT_VERSION));
        QCOMPARE(torlan::version_text(), QStringLiteral("torlan-x " PROJECT_VERSION "\n"));
    }

    void texts_are_utf8() { QCOMPARE(qgetenv("LC_ALL"), QByteArray("C.UTF-8")); }

    void a_reader_that_went_away_does_not_end_it() { QVERIFY(pipe_action.sa_handler == SIG_IGN); }

 public:
    struct sigaction pipe_action = {};  ///< right after the beginning: QtTest has one of its own
};

int main(int _argc, char* _argv[]) {
    qputenv("LC_ALL", "C");
    torlan::begin_program(QStringLiteral("torlan-x"));
    tst_begin_program test;
    ::sigaction(SIGPIPE, nullptr, &test.pipe_action);
    const QCoreApplication application(_argc, _argv);
    return QTest::qExec(&test, _argc, _argv);
}
#include "tst_begin_program.moc"
