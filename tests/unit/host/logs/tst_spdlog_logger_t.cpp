#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <csignal>
#include <cstdio>

#include "logs/spdlog_logger_t.h"

using utility::logs::log_settings_t;
using utility::logs::spdlog_logger_t;

namespace {

// Standard output goes to a descriptor of the test's own while this lives.
class redirected_stdout_t {
 public:
    explicit redirected_stdout_t(int _descriptor) : former(::dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        ::dup2(_descriptor, STDOUT_FILENO);
    }
    ~redirected_stdout_t() {
        std::fflush(stdout);
        ::dup2(former, STDOUT_FILENO);
        ::close(former);
    }

 private:
    int former;
};

QStringList lines_of(const QString& _file) {
    QFile file(_file);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

}  // namespace

class tst_spdlog_logger_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        QVERIFY(folder->isValid());
        settings = {};
        settings.folder = folder->path();
        settings.stdout_level = -1;
    }

    void a_line_has_time_level_place_and_message() {
        write(4, QStringLiteral("Ready {} %s"));
        const QStringList lines = lines_of(log_file());
        QCOMPARE(lines.size(), 1);
        static const QRegularExpression form(QRegularExpression::anchoredPattern(QStringLiteral(
            R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[4\] server/a/b:28 start Ready \{\} %s)")));
        QVERIFY2(form.match(lines.first()).hasMatch(), qPrintable(lines.first()));
    }

    void each_sink_takes_levels_up_to_its_own_data() {
        QTest::addColumn<int>("file_level");
        QTest::addColumn<int>("stdout_level");
        QTest::addColumn<QString>("in_file");
        QTest::addColumn<QString>("on_stdout");
        QTest::newRow("shipped") << 5 << 4 << "012345"
                                 << "01234";
        QTest::newRow("stdout more") << 0 << 6 << "0"
                                     << "0123456";
        QTest::newRow("errors and exceptions differ") << 1 << 2 << "01"
                                                      << "012";
        QTest::newRow("none") << -1 << -1 << ""
                              << "";
    }
    void each_sink_takes_levels_up_to_its_own() {
        QFETCH(int, file_level);
        QFETCH(int, stdout_level);
        settings.file_level = file_level;
        settings.stdout_level = stdout_level;
        const QString shown = folder->filePath(QStringLiteral("stdout"));
        const int descriptor = ::open(qPrintable(shown), O_CREAT | O_WRONLY, 0600);
        QVERIFY(descriptor >= 0);
        {
            const redirected_stdout_t redirected(descriptor);
            const auto opened = spdlog_logger_t::open(settings);
            for (int level = 0; opened.value && level <= 6; ++level) {
                opened.value->log_asynch(QString::number(level), level, {}, {}, 1);
            }
        }
        ::close(descriptor);
        QTEST(last_characters(log_file()), "in_file");
        QTEST(last_characters(shown), "on_stdout");
    }

    void one_call_is_one_line() {
        write(4, QStringLiteral("name\n2030-01-01 00:00:00.000 [4] server/x:1 f forged"));
        QCOMPARE(lines_of(log_file()).size(), 1);
    }

    void every_line_of_several_threads_is_written_at_the_end() {
        {
            const auto opened = spdlog_logger_t::open(settings);
            QVERIFY2(opened.value, qPrintable(opened.error));
            const auto log = [&opened] {
                for (int i = 0; i < 2000; ++i) {
                    opened.value->log_asynch(QStringLiteral("x"), 3, {}, {}, i);
                }
            };
            const std::unique_ptr<QThread> other(QThread::create(log));
            other->start();
            log();
            QVERIFY(other->wait());
        }
        QCOMPARE(lines_of(log_file()).size(), 4000);
    }

    void a_blocked_sink_loses_the_oldest_lines_and_never_blocks_the_caller() {
        settings.queue = 16;
        // The file stands for any disk that stands still.
        QCOMPARE(::mkfifo(qPrintable(log_file()), 0600), 0);
        const int pipe = ::open(qPrintable(log_file()), O_RDONLY | O_NONBLOCK);
        QVERIFY(pipe >= 0 && ::fcntl(pipe, F_SETFL, 0) == 0);
        quint64 dropped = 0;
        QByteArray shown;
        std::unique_ptr<QThread> reader;
        {
            auto opened = spdlog_logger_t::open(settings);
            QVERIFY2(opened.value, qPrintable(opened.error));
            // More than the pipe and the queue can hold; nobody reads yet.
            for (int i = 0; i < 4000; ++i) {
                opened.value->log_asynch(QStringLiteral("line %1").arg(i), 4, {}, {}, 1);
            }
            dropped = opened.value->dropped();
            reader.reset(QThread::create([&shown, pipe] { shown = read_all(pipe); }));
            reader->start();
        }
        QVERIFY(reader->wait());
        ::close(pipe);
        QVERIFY(dropped > 0);
        QCOMPARE(quint64(shown.count('\n')), 4000 - dropped);
        QVERIFY(shown.contains("line 3985\n"));
        QVERIFY(shown.endsWith("line 3999\n"));
    }

    void standard_output_that_nobody_reads_holds_neither_the_file_nor_the_end() {
        settings.stdout_level = 6;
        int pipe[2];
        QCOMPARE(::pipe2(pipe, O_CLOEXEC), 0);
        {
            const redirected_stdout_t redirected(pipe[1]);
            const auto opened = spdlog_logger_t::open(settings);
            for (int i = 0; opened.value && i < 4000; ++i) {
                opened.value->log_asynch(QStringLiteral("line %1").arg(i), 4, {}, {}, 1);
            }
            QTRY_COMPARE(lines_of(log_file()).size(), 4000);
        }
        ::close(pipe[0]);
        ::close(pipe[1]);
    }

    void standard_output_without_a_reader_is_told_in_the_file() {
        settings.stdout_level = 6;
        std::signal(SIGPIPE, SIG_IGN);
        int pipe[2];
        QCOMPARE(::pipe2(pipe, O_CLOEXEC), 0);
        ::close(pipe[0]);
        {
            const redirected_stdout_t redirected(pipe[1]);
            const auto opened = spdlog_logger_t::open(settings);
            const auto told = [this] {
                return lines_of(log_file()).filter("Nobody can read standard output").size();
            };
            for (int i = 0; opened.value && told() == 0 && i < 2000; ++i) {
                opened.value->log_asynch(QStringLiteral("line"), 4, {}, {}, 1);
                QTest::qWait(1);
            }
            opened.value->log_asynch(QStringLiteral("last"), 4, {}, {}, 1);
            QTRY_VERIFY(lines_of(log_file()).last().endsWith("last"));
            QCOMPARE(told(), 1);
        }
        ::close(pipe[1]);
    }

    void a_folder_that_is_taken_away_is_made_again() {
        settings.folder = folder->filePath("logs");
        QVERIFY(QDir().mkdir(settings.folder));
        const QString file = settings.folder + "/server-torlan.log";
        const auto opened = spdlog_logger_t::open(settings);
        QVERIFY2(opened.value, qPrintable(opened.error));
        const auto log = [&opened](const char* _text) {
            opened.value->log_asynch(QLatin1String(_text), 4, {}, {}, 1);
        };
        log("first");
        QTRY_COMPARE(lines_of(file).size(), 1);
        QVERIFY(QDir(settings.folder).removeRecursively());
        log("second");
        QTRY_COMPARE(lines_of(file).size(), 2);
        QVERIFY(lines_of(file).first().endsWith("was made again"));
        QVERIFY(lines_of(file).last().endsWith("second"));
        QVERIFY(QFile::rename(file, file + ".moved"));
        log("third");
        QTRY_VERIFY(lines_of(file).size() == 2 && lines_of(file).last().endsWith("third"));
        QCOMPARE(QFile::permissions(file) & 0x0007, QFile::Permissions());
    }

    void a_full_file_is_rotated_and_old_ones_go() {
        settings.size_mb = 1;
        settings.rotation = 2;
        {
            const auto opened = spdlog_logger_t::open(settings);
            QVERIFY2(opened.value, qPrintable(opened.error));
            const QString text(10000, QLatin1Char('x'));
            for (int i = 0; i < 450; ++i) {
                opened.value->log_asynch(text, 4, {}, {}, i);
            }
        }
        const QStringList files = QDir(folder->path()).entryList(QDir::Files, QDir::Name);
        QCOMPARE(files, QStringList({QStringLiteral("server-torlan.1.log"),
                                     QStringLiteral("server-torlan.2.log"),
                                     QStringLiteral("server-torlan.log")}));
    }

    void the_file_is_not_for_everybody() {
        const mode_t former = ::umask(0);
        write(4, QStringLiteral("x"));
        ::umask(former);
        struct stat status = {};
        QCOMPARE(::stat(qPrintable(log_file()), &status), 0);
        QCOMPARE(status.st_mode & 0777, mode_t(0640));
    }

    void a_folder_that_cannot_be_written_is_one_sentence() {
        QFile in_the_way(folder->filePath(QStringLiteral("file")));
        QVERIFY(in_the_way.open(QIODevice::WriteOnly));
        settings.folder = in_the_way.fileName();
        const auto opened = spdlog_logger_t::open(settings);
        QVERIFY(!opened.value);
        QVERIFY2(opened.error.contains(settings.folder), qPrintable(opened.error));
        QVERIFY(!opened.error.contains(QLatin1Char('\n')));
    }

 private:
    QString log_file() const { return folder->filePath(QStringLiteral("server-torlan.log")); }

    void write(int _level, const QString& _message) {
        const auto opened = spdlog_logger_t::open(settings);
        QVERIFY2(opened.value, qPrintable(opened.error));
        opened.value->log_asynch(_message, _level, QStringLiteral("start"),
                                 QStringLiteral("server/a/b"), 28);
    }

    static QString last_characters(const QString& _file) {
        QString characters;
        for (const QString& line : lines_of(_file)) {
            characters += line.back();
        }
        return characters;
    }

    static QByteArray read_all(int _descriptor) {
        QByteArray all;
        char block[4096];
        for (ssize_t got = 0; (got = ::read(_descriptor, block, sizeof block)) > 0;) {
            all.append(block, got);
        }
        return all;
    }

    std::unique_ptr<QTemporaryDir> folder;
    log_settings_t settings;
};

QTEST_GUILESS_MAIN(tst_spdlog_logger_t)
#include "tst_spdlog_logger_t.moc"
