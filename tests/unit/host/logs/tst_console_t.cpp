#include "logs/console_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QTest>
#include <csignal>
#include <memory>

using utility::logs::console_t;

/// A pipe in the place of standard output.
class tst_console_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase() { std::signal(SIGPIPE, SIG_IGN); }
    void init() {
        QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
        console = std::make_unique<console_t>(ends[1]);
    }
    void cleanup() {
        console.reset();
        ::close(ends[1]);
        if (ends[0] >= 0) {
            ::close(ends[0]);
        }
    }

    void what_waits_is_written_before_the_end() {
        for (int i = 0; i < 500; ++i) {
            console->write("line " + std::to_string(i) + '\n');
        }
        console.reset();
        const QByteArray text = read_all();
        QVERIFY(text.startsWith("line 0\nline 1\n"));
        QVERIFY(text.endsWith("line 499\n"));
    }

    void without_a_reader_nothing_waits_and_the_lost_are_counted() {
        const std::string line(1023, 'x');
        QElapsedTimer clock;
        clock.start();
        constexpr int lines = 3000;  // of 1 KiB; the console keeps 1 MiB, a pipe 64 KiB
        for (int i = 0; i < lines; ++i) {
            console->write(line + '\n');
        }
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
        // Read at last, it says how many are missing.
        QByteArray text;
        int lost = 0;
        const QRegularExpression told("(\\d+) lines are not shown here: nobody read");
        const auto all_told = [&told](const QByteArray& _text) {
            int sum = 0;
            // More than once where the thread that writes found room in between.
            for (const QRegularExpressionMatch& match :
                 told.globalMatch(QString::fromLatin1(_text))) {
                sum += match.captured(1).toInt();
            }
            return sum;
        };
        QTRY_COMPARE(int((text += read_all()).count(QByteArray::fromStdString(line))) +
                         (lost = all_told(text)),
                     lines);
        QVERIFY(lost > 0);
    }

    void a_reader_that_stands_still_does_not_hold_the_end() {
        for (int i = 0; i < 200; ++i) {
            console->write(std::string(1024, 'x'));
        }
        QElapsedTimer clock;
        clock.start();
        console.reset();
        QVERIFY2(clock.elapsed() < 1000, qPrintable(QString::number(clock.elapsed())));
    }

    void a_reader_that_has_gone_ends_it() {
        QVERIFY(!console->is_closed());
        ::close(std::exchange(ends[0], -1));
        console->write("line\n");
        QTRY_VERIFY(console->is_closed());
        console->write("line\n");
    }

 private:
    QByteArray read_piece() const {
        char buffer[4096];
        const ssize_t count = ::read(ends[0], buffer, sizeof buffer);
        return QByteArray(buffer, int(qMax<ssize_t>(count, 0)));
    }
    /// What is in the pipe now.
    QByteArray read_all() const {
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
        QByteArray text;
        for (QByteArray piece = read_piece(); !piece.isEmpty(); piece = read_piece()) {
            text += piece;
        }
        return text;
    }

    int ends[2] = {-1, -1};
    std::unique_ptr<console_t> console;
};

QTEST_GUILESS_MAIN(tst_console_t)
#include "tst_console_t.moc"
