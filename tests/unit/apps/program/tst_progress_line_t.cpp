#include "program/progress_line_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <QTest>
#include <cstdlib>

using torlan::progress_line_t;

/// What comes at the other end of standard error.
class tst_progress_line_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void terminal_shows_one_line_and_nothing_in_the_end() {
        const int screen = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        QVERIFY(::grantpt(screen) == 0 && ::unlockpt(screen) == 0);
        const int terminal = ::open(::ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const QByteArray shown = written(terminal, screen, []() {
            progress_line_t line;
            line.show_often("too soon");
            line.show("one\x1b[2J");
            line.show("two");
        });
        QCOMPARE(shown, QByteArray("\r\x1b[Kone [2J\r\x1b[Ktwo\r\x1b[K"));
        ::close(terminal);
        ::close(screen);
    }

    void pipe_gets_nothing() {
        int ends[2];
        QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
        const QByteArray shown = written(ends[1], ends[0], []() { progress_line_t().show("one"); });
        QCOMPARE(shown, QByteArray());
        ::close(ends[0]);
        ::close(ends[1]);
    }

 private:
    /// Runs it with another standard error.
    static QByteArray written(int _error, int _other_end, void (*_run)()) {
        const int former = ::dup(STDERR_FILENO);
        ::dup2(_error, STDERR_FILENO);
        _run();
        ::dup2(former, STDERR_FILENO);
        ::close(former);
        ::fcntl(_other_end, F_SETFL, O_NONBLOCK);
        char buffer[256];
        const ssize_t count = ::read(_other_end, buffer, sizeof buffer);
        return QByteArray(buffer, std::max<ssize_t>(count, 0));
    }
};

QTEST_GUILESS_MAIN(tst_progress_line_t)
#include "tst_progress_line_t.moc"
