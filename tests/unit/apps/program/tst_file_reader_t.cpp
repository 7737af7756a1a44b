#include "program/file_reader_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <memory>

using torlan::file_reader_t;

class tst_file_reader_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        path = folder->filePath(QStringLiteral("file"));
    }
    void cleanup() { QCOMPARE(open_descriptors(), descriptors_at_rest); }
    void initTestCase() { descriptors_at_rest = open_descriptors(); }

    void a_file_is_read_to_its_end_or_not_at_all_data() {
        QTest::addColumn<qint64>("size");
        QTest::addColumn<bool>("is_read");
        QTest::newRow("empty") << qint64(0) << true;
        QTest::newRow("small") << qint64(1) << true;
        QTest::newRow("several pieces") << qint64(300'000) << true;
        QTest::newRow("as large as may be") << qint64(max_bytes) << true;
        QTest::newRow("one byte more") << qint64(max_bytes + 1) << false;
    }
    void a_file_is_read_to_its_end_or_not_at_all() {
        QFETCH(qint64, size);
        QFETCH(bool, is_read);
        const QByteArray bytes = QByteArray(size, 'x').replace(0, qMin<qint64>(size, 1), "y");
        write(bytes);
        const auto result = file_reader_t(path, max_bytes).read();
        QCOMPARE(result.error, is_read ? QString() : path + ": is larger than 1 MiB");
        QVERIFY(result.value == (is_read ? bytes : QByteArray()));
    }

    void what_cannot_be_read_is_named_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("reason");
        QTest::newRow("nothing there") << "none"
                                       << "No such file or directory";
        QTest::newRow("a folder") << "."
                                  << "Is a directory";
        QTest::newRow("below a file") << "file/x"
                                      << "Not a directory";
    }
    void what_cannot_be_read_is_named() {
        QFETCH(QString, name);
        QFETCH(QString, reason);
        write("x");
        const QString there = folder->filePath(name);
        QCOMPARE(file_reader_t(there, max_bytes).read().error,
                 there + ": cannot be read: " + reason);
    }

    void a_pipe_is_read_when_its_writer_comes_and_as_it_writes() {
        make_pipe();
        file_reader_t reader(path, max_bytes);
        int writer = -1;
        const auto end = [&]() { ::close(writer); };
        const auto go_on = [&]() {
            QCOMPARE(::write(writer, "second", 6), ssize_t(6));
            QTimer::singleShot(20, &reader, end);
        };
        const auto come = [&]() {
            writer = open_writer();
            QVERIFY(writer >= 0);
            QCOMPARE(::write(writer, "first ", 6), ssize_t(6));
            QTimer::singleShot(20, &reader, go_on);
        };
        QTimer::singleShot(20, &reader, come);
        const auto result = reader.read();
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value, QByteArray("first second"));
    }

    void a_writer_without_a_word_is_an_empty_file() {
        make_pipe();
        file_reader_t reader(path, max_bytes);
        QTimer::singleShot(0, &reader, [this]() { ::close(open_writer()); });
        const auto result = reader.read();
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value, QByteArray());
    }

    void another_reader_of_the_pipe_ends_nothing() {
        make_pipe();
        const int other = ::open(qPrintable(path), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        const int writer = open_writer();
        QVERIFY(writer >= 0);
        file_reader_t reader(path, max_bytes);
        QSocketNotifier faster(other, QSocketNotifier::Read);
        connect(&faster, &QSocketNotifier::activated, &reader, [&]() {
            char byte = 0;
            QCOMPARE(::read(other, &byte, 1), ssize_t(1));
            faster.setEnabled(false);
            QTimer::singleShot(0, &reader, [&]() {
                QCOMPARE(::write(writer, "rest", 4), ssize_t(4));
                ::close(writer);
            });
        });
        QCOMPARE(::write(writer, "x", 1), ssize_t(1));
        const auto result = reader.read();
        ::close(other);
        QCOMPARE(result.error, QString());
        QCOMPARE(result.value, QByteArray("rest"));
    }

    void giving_up_ends_the_wait_data() {
        QTest::addColumn<bool>("has_writer");
        QTest::newRow("nobody writes") << false;
        QTest::newRow("the writer is silent") << true;
    }
    void giving_up_ends_the_wait() {
        QFETCH(bool, has_writer);
        make_pipe();
        file_reader_t reader(path, max_bytes);
        int writer = -1;
        QTimer::singleShot(0, &reader, [&]() {
            writer = has_writer ? open_writer() : -1;
            QTimer::singleShot(0, &reader, &file_reader_t::give_up);
        });
        QCOMPARE(reader.read().error, path + ": was not read to its end");
        QCOMPARE(writer >= 0, has_writer);
        ::close(writer);
    }

    void given_up_before_it_waits_for_nothing() {
        make_pipe();
        file_reader_t reader(path, max_bytes);
        reader.give_up();
        QVERIFY(!reader.read().is_ok());
    }

 private:
    static constexpr qint64 max_bytes = 1 << 20;

    static qsizetype open_descriptors() {
        return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System | QDir::Files).size();
    }
    void write(const QByteArray& _bytes) const {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(_bytes), _bytes.size());
    }
    void make_pipe() const { QCOMPARE(::mkfifo(qPrintable(path), 0600), 0); }
    int open_writer() const { return ::open(qPrintable(path), O_WRONLY | O_NONBLOCK | O_CLOEXEC); }

    std::unique_ptr<QTemporaryDir> folder;
    QString path;
    qsizetype descriptors_at_rest = 0;
};

QTEST_GUILESS_MAIN(tst_file_reader_t)
#include "tst_file_reader_t.moc"
