#include "program/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <QFile>
#include <QTest>
#include <csignal>

/// Takes a standard descriptor away, or puts another one in its place, as long as it lives.
class replaced_t {
 public:
    explicit replaced_t(int _descriptor, int _other = -1)
        : descriptor(_descriptor), kept(::fcntl(_descriptor, F_DUPFD_CLOEXEC, 10)) {
        if (_other < 0) {
            ::close(descriptor);
        } else {
            ::dup2(_other, descriptor);
        }
    }
    ~replaced_t() {
        ::dup2(kept, descriptor);
        ::close(kept);
    }
    Q_DISABLE_COPY_MOVE(replaced_t)

 private:
    const int descriptor;
    const int kept;
};

class tst_standard_streams : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_closed_stream_takes_no_file_of_ours_data() {
        QTest::addColumn<int>("descriptor");
        QTest::newRow("input") << STDIN_FILENO;
        QTest::newRow("output") << STDOUT_FILENO;
        QTest::newRow("error") << STDERR_FILENO;
    }
    void a_closed_stream_takes_no_file_of_ours() {
        QFETCH(int, descriptor);
        int flags = -1;
        int next = -1;
        {
            const replaced_t closed(descriptor);
            torlan::secure_standard_streams();
            flags = ::fcntl(descriptor, F_GETFL);
            next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
            ::close(next);
        }
        QVERIFY(flags >= 0);
        QCOMPARE(flags & O_ACCMODE, O_RDONLY);
        QVERIFY(next > STDERR_FILENO);
    }

    void an_open_stream_stays_as_it_is() {
        const QByteArray name = "/proc/self/fd/1";
        const QString before = QFile::symLinkTarget(QString::fromLatin1(name));
        torlan::secure_standard_streams();
        QCOMPARE(QFile::symLinkTarget(QString::fromLatin1(name)), before);
    }

    void a_reader_that_went_away_is_an_error_and_no_end() {
        std::signal(SIGPIPE, SIG_DFL);
        torlan::secure_standard_streams();
        int ends[2] = {-1, -1};
        QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
        ::close(ends[0]);
        base::result_t result;
        {
            const replaced_t output(STDOUT_FILENO, ends[1]);
            result = torlan::write_output("word\n");
            torlan::write_text(stdout, QStringLiteral("word\n"));
            std::clearerr(stdout);
        }
        ::close(ends[1]);
        QCOMPARE(result.error, QStringLiteral("Standard output: Broken pipe."));
    }
};

QTEST_GUILESS_MAIN(tst_standard_streams)
#include "tst_standard_streams.moc"
