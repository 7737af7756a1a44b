#include "api/live_output_t.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSignalSpy>
#include <QTest>
#include <csignal>

using namespace torlan;

class tst_live_output_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        std::signal(SIGPIPE, SIG_IGN);
        QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
        QVERIFY(::fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0);
    }
    void cleanup() {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    void lines_come_in_their_order() {
        live_output_t output(ends[1]);
        output.add("one\n");
        output.add("two\n");
        QTRY_COMPARE(read += some(), QByteArray("one\ntwo\n"));
    }

    void slow_reader_is_not_waited_for_and_gets_all() {
        live_output_t output(ends[1]);
        QByteArray all;
        for (int i = 0; i < 20'000; ++i) {
            const QByteArray line = QByteArray::number(i) + " is a line of some length\n";
            output.add(line);
            all += line;
        }
        read.clear();
        QTRY_COMPARE((read += some()).size(), all.size());
        QCOMPARE(read, all);
    }

    void what_is_too_much_is_left_out_and_told() {
        live_output_t output(ends[1]);
        QSignalSpy left_out(&output, &live_output_t::left_out);
        const QByteArray large = QByteArray(3 << 20, 'x') + '\n';
        output.add(large);
        output.add(large);
        output.add("small\n");
        read.clear();
        QTRY_VERIFY((read += some()).endsWith("x\nsmall\n"));
        QTRY_COMPARE(left_out.size(), 1);
        QCOMPARE(left_out[0][0].toLongLong(), 1);
    }

    void reader_that_goes_is_noticed_though_nothing_is_written() {
        live_output_t output(ends[1]);
        QSignalSpy ended(&output, &live_output_t::ended);
        ::close(ends[0]);
        QVERIFY(ended.wait());
        QCOMPARE(ended[0][0].toString(), QString());
    }

    void file_that_takes_nothing_is_an_error() {
        const int full = ::open("/dev/full", O_WRONLY | O_CLOEXEC);
        live_output_t output(full);
        QSignalSpy ended(&output, &live_output_t::ended);
        output.add("x\n");
        QVERIFY(ended.wait());
        QVERIFY(!ended[0][0].toString().isEmpty());
        ::close(full);
    }

    void what_goes_at_once_is_written_at_the_end() {
        { live_output_t(ends[1]).add("last\n"); }
        QCOMPARE(some(), QByteArray("last\n"));
    }

 private:
    QByteArray some() const {
        char buffer[65536];
        const ssize_t count = ::read(ends[0], buffer, sizeof buffer);
        return QByteArray(buffer, std::max<ssize_t>(count, 0));
    }

    int ends[2];
    QByteArray read;
};

QTEST_GUILESS_MAIN(tst_live_output_t)
#include "tst_live_output_t.moc"
