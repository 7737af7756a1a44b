#include "audit/audit_file_t.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using audit::audit_file_t;

namespace {

QByteArray read(const QString& _path) {
    QFile file(_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("nothing");
}

bool put(const QString& _path, const QByteArray& _text) {
    QFile file(_path);
    return file.open(QIODevice::WriteOnly) && file.write(_text) == _text.size();
}

int mode_of(const QString& _path) {
    struct stat status = {};
    return ::lstat(QFile::encodeName(_path).constData(), &status) == 0 ? status.st_mode & 07777
                                                                       : -1;
}

}  // namespace

class tst_audit_file_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        place = folder->filePath("logs");
    }

    void lines_are_appended_and_the_owner_alone_reads_them() {
        const mode_t before = ::umask(0);
        audit_file_t file({place, "audit"});
        const auto opened = file.open();
        const auto written = file.write("one\n");
        ::umask(before);
        QCOMPARE(opened.error, QString());
        QCOMPARE(written.error, QString());
        QVERIFY(file.write("two\n").is_ok());
        QCOMPARE(read(current()), QByteArray("one\ntwo\n"));
        QCOMPARE(mode_of(current()), 0600);
        QCOMPARE(mode_of(place), 0700);
    }

    void an_open_mode_is_closed() {
        QVERIFY(QDir().mkpath(place));
        QVERIFY(put(current(), "old\n"));
        QCOMPARE(::chmod(qPrintable(current()), 0666), 0);
        audit_file_t file({place, "audit"});
        QVERIFY(file.write("new\n").is_ok());
        QCOMPARE(mode_of(current()), 0600);
        QCOMPARE(read(current()), QByteArray("old\nnew\n"));
    }

    void a_full_file_is_set_aside_and_few_are_kept() {
        const mode_t before = ::umask(0);
        audit_file_t file({place, "audit", 20, 2});
        for (char letter = 'a'; letter <= 'h'; ++letter) {
            QVERIFY(file.write(QByteArray(9, letter) + '\n').is_ok());
        }
        ::umask(before);
        QCOMPARE(QDir(place).entryList(QDir::Files, QDir::Name),
                 (QStringList{"audit.1.log", "audit.2.log", "audit.log"}));
        QCOMPARE(read(current()), QByteArray("ggggggggg\nhhhhhhhhh\n"));
        QCOMPARE(read(place + "/audit.1.log"), QByteArray("eeeeeeeee\nfffffffff\n"));
        QCOMPARE(read(place + "/audit.2.log"), QByteArray("ccccccccc\nddddddddd\n"));
        for (const char* name : {"audit.log", "audit.1.log", "audit.2.log"}) {
            QCOMPARE(mode_of(place + '/' + name), 0600);
        }
    }

    void a_later_life_goes_on_where_the_former_ended() {
        {
            audit_file_t file({place, "audit", 20, 2});
            QVERIFY(file.write("aaaaaaaaa\n").is_ok());
        }
        audit_file_t file({place, "audit", 20, 2});
        QVERIFY(file.write("bbbbbbbbb\n").is_ok());
        QVERIFY(file.write("ccccccccc\n").is_ok());
        QCOMPARE(read(place + "/audit.1.log"), QByteArray("aaaaaaaaa\nbbbbbbbbb\n"));
    }

    void half_a_line_is_ended_first() {
        QVERIFY(QDir().mkpath(place));
        QVERIFY(put(current(), "old\nhal"));
        audit_file_t file({place, "audit"});
        QVERIFY(file.write("new\n").is_ok());
        QCOMPARE(read(current()), QByteArray("old\nhal\nnew\n"));
    }

    void a_link_in_its_place_is_not_followed_data() {
        QTest::addColumn<bool>("hard");
        QTest::newRow("symbolic") << false;
        QTest::newRow("hard") << true;
    }
    void a_link_in_its_place_is_not_followed() {
        QFETCH(bool, hard);
        const QString target = folder->filePath("victim");
        QVERIFY(put(target, "mine"));
        QVERIFY(QDir().mkpath(place));
        const auto make = hard ? ::link : ::symlink;
        QCOMPARE(make(qPrintable(target), qPrintable(current())), 0);
        audit_file_t file({place, "audit"});
        const base::result_t opened = file.open();
        QVERIFY(!opened.is_ok());
        QVERIFY2(opened.error.contains(current()), qPrintable(opened.error));
        QVERIFY(!file.write("x\n").is_ok());
        QCOMPARE(read(target), QByteArray("mine"));
    }

    void a_pipe_in_its_place_blocks_nothing() {
        QVERIFY(QDir().mkpath(place));
        QCOMPARE(::mkfifo(qPrintable(current()), 0600), 0);
        audit_file_t file({place, "audit"});
        QVERIFY(!file.open().is_ok());
    }

    void a_file_of_somebody_else_is_refused() {
        if (::geteuid() != 0) {
            QSKIP("Only root can give a file away.");
        }
        QVERIFY(QDir().mkpath(place));
        QVERIFY(put(current(), "theirs\n"));
        QCOMPARE(::chown(qPrintable(current()), 65534, 65534), 0);
        audit_file_t file({place, "audit"});
        QVERIFY(!file.open().is_ok());
        QCOMPARE(read(current()), QByteArray("theirs\n"));
    }

    void a_folder_that_others_can_change_is_refused() {
        QVERIFY(QDir().mkpath(place));
        QCOMPARE(::chmod(qPrintable(place), 0777), 0);
        audit_file_t file({place, "audit"});
        const base::result_t opened = file.open();
        QVERIFY2(opened.error.contains(place), qPrintable(opened.error));
        QVERIFY(!QFile::exists(current()));
    }

    void a_second_writer_is_refused() {
        audit_file_t first({place, "audit"});
        QVERIFY(first.open().is_ok());
        audit_file_t second({place, "audit"});
        QVERIFY(second.open().error.contains("another program"));
        audit_file_t other({place, "settings-audit"});
        QVERIFY(other.open().is_ok());
    }

    void what_was_taken_away_is_made_again_data() {
        QTest::addColumn<QString>("taken");
        QTest::newRow("the file") << "logs/audit.log";
        QTest::newRow("the folder") << "logs";
    }
    void what_was_taken_away_is_made_again() {
        QFETCH(QString, taken);
        audit_file_t file({place, "audit"});
        QVERIFY(file.write("one\n").is_ok());
        QVERIFY(QDir().rename(folder->filePath(taken), folder->filePath("elsewhere")));
        QVERIFY(file.write("two\n").is_ok());
        QCOMPARE(read(current()), QByteArray("two\n"));
        QCOMPARE(mode_of(current()), 0600);
    }

    void after_a_failure_it_heals() {
        audit_file_t file({place, "audit"});
        QVERIFY(file.write("one\n").is_ok());
        QVERIFY(QFile::rename(current(), place + "/kept"));
        QVERIFY(QDir().mkdir(current()));
        const base::result_t failed = file.write("two\n");
        QVERIFY2(failed.error.contains(current()), qPrintable(failed.error));
        QVERIFY(QDir().rmdir(current()));
        QVERIFY(file.write("three\n").is_ok());
        QCOMPARE(read(current()), QByteArray("three\n"));
    }

 private:
    QString current() const { return place + "/audit.log"; }

    std::unique_ptr<QTemporaryDir> folder;
    QString place;
};

QTEST_GUILESS_MAIN(tst_audit_file_t)
#include "tst_audit_file_t.moc"
