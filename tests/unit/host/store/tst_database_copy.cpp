#include "store/database_copy.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QFileInfo>
#include <QTest>

#include "kit/old_home_t.h"

using namespace database::store;

class tst_database_copy : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void it_is_the_database_as_it_was() {
        const sample::old_home_t home;
        QCOMPARE(copy(home).value, home.copy);
        sample::foreign_writer_t kept(home.copy);
        QCOMPARE(kept.read("PRAGMA user_version"), "1");
        QCOMPARE(kept.read("PRAGMA application_id"), "1953460836");
        QCOMPARE(kept.read("SELECT count(*) FROM elements"), "3");
        QCOMPARE(kept.read("PRAGMA integrity_check"), "ok");
    }

    void it_is_its_owner_s_alone() {
        const sample::old_home_t home;
        QVERIFY(QFile::setPermissions(home.path, QFile::permissions(home.path) | QFile::ReadOther));
        const auto old = ::umask(0);
        QVERIFY(copy(home).is_ok());
        ::umask(old);
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QCOMPARE(QFile::permissions(home.copy) & others, QFile::Permissions());
    }

    void it_is_the_database_owner_s_even_if_root_makes_it() {
        const sample::old_home_t home;
        if (::geteuid() == 0) {
            QCOMPARE(::chown(qPrintable(home.path), 65534, 65534), 0);
        }
        QVERIFY(copy(home).is_ok());
        QCOMPARE(QFileInfo(home.copy).ownerId(), QFileInfo(home.path).ownerId());
        QCOMPARE(QFileInfo(home.copy).groupId(), QFileInfo(home.path).groupId());
    }

    void the_same_is_not_kept_twice() {
        const sample::old_home_t home;
        QCOMPARE(copy(home).value, home.copy);
        QCOMPARE(copy(home).value, home.copy);
        sample::foreign_writer_t(home.path).write({"DELETE FROM permissions"});
        QCOMPARE(copy(home).value, home.file("installation.layout-1-2.db"));
        QCOMPARE(copies(home),
                 QStringList({"installation.layout-1-2.db", "installation.layout-1.db"}));
    }

    void another_file_of_the_name_stays() {
        const sample::old_home_t home;
        write(home.copy, "mine");
        QCOMPARE(copy(home).value, home.file("installation.layout-1-2.db"));
        QCOMPARE(content(home.copy), "mine");
    }

    void what_is_no_file_is_neither_followed_nor_a_copy_data() {
        QTest::addColumn<int>("kind");
        QTest::newRow("link to nothing") << 0;
        QTest::newRow("link to a file that holds the same") << 1;
        QTest::newRow("pipe") << 2;
        QTest::newRow("folder") << 3;
    }
    void what_is_no_file_is_neither_followed_nor_a_copy() {
        QFETCH(int, kind);
        const sample::old_home_t home;
        const QTemporaryDir elsewhere;
        const QString target = elsewhere.filePath("target");
        if (kind == 1) {
            QVERIFY(copy(home).is_ok() && QFile::rename(home.copy, target));
        }
        if (kind < 2) {
            QVERIFY(QFile::link(target, home.copy));
        } else {
            QCOMPARE(kind == 2 ? ::mkfifo(qPrintable(home.copy), 0600)
                               : ::mkdir(qPrintable(home.copy), 0700),
                     0);
        }
        QCOMPARE(copy(home).value, home.file("installation.layout-1-2.db"));
        QCOMPARE(QFileInfo(target).exists(), kind == 1);
        QVERIFY(!QFileInfo(home.file("installation.layout-1-2.db")).isSymLink());
        QCOMPARE(QFileInfo(home.copy).isSymLink(), kind < 2);
    }

    void a_link_in_the_place_of_the_unfinished_copy_is_not_followed() {
        const sample::old_home_t home;
        const QTemporaryDir elsewhere;
        write(elsewhere.filePath("target"), "");
        QVERIFY(QFile::link(elsewhere.filePath("target"), home.copy + ".part"));
        QCOMPARE(copy(home).value, home.copy);
        QCOMPARE(content(elsewhere.filePath("target")), "");
        QCOMPARE(copies(home), QStringList("installation.layout-1.db"));
    }

    void one_that_cannot_be_written_is_one_sentence() {
        const sample::old_home_t home;
        QVERIFY(QDir().mkpath(home.copy + ".part/in the way"));
        const QString error = copy(home).error;
        QVERIFY2(error.startsWith("The copy " + home.copy + ".part cannot be written: "),
                 qPrintable(error));
    }

    void after_a_failure_nothing_is_left() {
        const sample::old_home_t home;
        connection_t other;
        QVERIFY(other.open(home.path, connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(other.run("PRAGMA locking_mode = EXCLUSIVE").is_ok());
        QVERIFY(other.run("DELETE FROM permissions").is_ok());
        QVERIFY2(copy(home).error.endsWith(" is in use by another program."),
                 qPrintable(copy(home).error));
        QCOMPARE(copies(home), QStringList());
    }

 private:
    static base::result_of_t<QString> copy(const sample::old_home_t& _home) {
        return copy_database(_home.path, 1, 0);
    }
    static QStringList copies(const sample::old_home_t& _home) {
        return _home.files().filter(QStringLiteral(".layout-"));
    }
    static void write(const QString& _path, const QByteArray& _content) {
        QFile file(_path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(_content) == _content.size());
    }
    static QByteArray content(const QString& _path) {
        QFile file(_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
};

QTEST_GUILESS_MAIN(tst_database_copy)
#include "tst_database_copy.moc"
