#include "audit/audit_reader_t.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDateTime>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include "audit/line_text.h"

using audit::audit_reader_t;

namespace {

constexpr qint64 moment = 1'795'327'842'123;

QByteArray line(int _after) {
    audit::entry_t entry;
    entry.time = moment + _after;
    entry.operation = "read";
    return audit::line_of(entry);
}

}  // namespace

class tst_audit_reader_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { folder = std::make_unique<QTemporaryDir>(); }

    void the_oldest_file_comes_first() {
        put("audit.log", line(5) + line(6));
        put("audit.1.log", line(3) + line(4));
        put("audit.2.log", line(1) + line(2));
        put("audit.txt", line(99));
        put("settings-audit.log", line(99));
        QCOMPARE(times(), (QList<qint64>{1, 2, 3, 4, 5, 6}));
    }

    void ten_is_older_than_nine() {
        for (int age = 0; age <= 12; ++age) {
            put(age == 0 ? QString("audit.log") : QString("audit.%1.log").arg(age), line(20 - age));
        }
        QCOMPARE(times().size(), 13);
        QCOMPARE(times().front(), qint64(8));
    }

    void a_rotation_leaves_a_gap_for_a_moment() {
        put("audit.1.log", line(1));
        QCOMPARE(times(), QList<qint64>{1});
    }

    void a_file_that_was_rotated_meanwhile_is_read_once() {
        put("audit.log", line(1));
        QCOMPARE(::link(qPrintable(path("audit.log")), qPrintable(path("audit.1.log"))), 0);
        QCOMPARE(times(), QList<qint64>{1});
    }

    void rotation_while_reading_takes_nothing_away() {
        put("audit.log", line(2));
        put("audit.1.log", line(1));
        audit_reader_t reader;
        QVERIFY(reader.open(folder->path(), "audit", 0).is_ok());
        QVERIFY(QFile::remove(path("audit.1.log")));
        QVERIFY(QFile::rename(path("audit.log"), path("audit.1.log")));
        QCOMPARE(reader.next()->entry.time, moment + 1);
        QCOMPARE(reader.next()->entry.time, moment + 2);
        QVERIFY(!reader.next());
    }

    void broken_lines_are_left_out_and_counted() {
        put("audit.log", line(1) + "{\"time\":\"2026\n" + QByteArray(50, '\0') + '\n' + line(2) +
                             "\n" + QByteArray(100'000, 'x') + '\n' + line(3) + line(4).chopped(1));
        audit_reader_t reader;
        QVERIFY(reader.open(folder->path(), "audit", 0).is_ok());
        QList<qint64> found;
        while (const auto next = reader.next()) {
            found.append(next->entry.time - moment);
            QCOMPARE(next->text, line(int(found.back())));
        }
        QCOMPARE(found, (QList<qint64>{1, 2, 3}));
        // The long one is more than one piece.
        QVERIFY(reader.broken() >= 4 && reader.broken() <= 5);
    }

    void files_written_last_before_are_not_read() {
        put("audit.1.log", line(1));
        put("audit.log", line(2));
        const timespec old[2] = {{1'000, 0}, {1'000, 0}};
        QCOMPARE(::utimensat(AT_FDCWD, qPrintable(path("audit.1.log")), old, 0), 0);
        QCOMPARE(times(2'000'000), QList<qint64>{2});
        QCOMPARE(times(1'000'000), (QList<qint64>{1, 2}));
    }

    void none_is_no_failure() {
        audit_reader_t reader;
        QVERIFY(reader.open(folder->filePath("none"), "audit", 0).is_ok());
        QVERIFY(!reader.is_there());
        QVERIFY(!reader.next());
    }

    void what_cannot_be_read_is_one_sentence() {
        QVERIFY(QDir(folder->path()).mkdir("audit.log"));
        audit_reader_t reader;
        const base::result_t opened = reader.open(folder->path(), "audit", 0);
        QVERIFY2(opened.error.contains(path("audit.log")), qPrintable(opened.error));
    }

 private:
    QString path(const QString& _name) const { return folder->filePath(_name); }
    void put(const QString& _name, const QByteArray& _text) const {
        QFile file(path(_name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(_text) == _text.size());
    }
    QList<qint64> times(qint64 _since = 0) const {
        audit_reader_t reader;
        QList<qint64> found;
        if (reader.open(folder->path(), "audit", _since).is_ok()) {
            while (const auto next = reader.next()) {
                found.append(next->entry.time - moment);
            }
        }
        return found;
    }

    std::unique_ptr<QTemporaryDir> folder;
};

QTEST_GUILESS_MAIN(tst_audit_reader_t)
#include "tst_audit_reader_t.moc"
