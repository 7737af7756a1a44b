#include "store/open_database.h"

#include <QFile>
#include <QTest>
#include <thread>

#include "kit/sample_installation.h"
#include "store/schema.h"

using namespace database::store;

static QByteArray content(const QString& _path) {
    QFile file(_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

class tst_open_database : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_new_file_and_what_stands_beside_it_are_the_owner_s_alone() {
        const sample::file_t file;
        QCOMPARE(file.error, QString());
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        connection_t connection;
        QVERIFY(open_database(connection, file.path(), 0).is_ok());
        QVERIFY(connection.run("UPDATE items SET value = '1'").is_ok());
        for (const char* ending : {"", "-wal", "-shm"}) {
            QVERIFY(QFile::exists(file.path() + ending));
            QCOMPARE(QFile::permissions(file.path() + ending) & others, QFile::Permissions());
        }
    }

    void the_settings_are_in_force() {
        const sample::file_t file;
        connection_t connection;
        QVERIFY(open_database(connection, file.path(), 100).is_ok());
        QCOMPARE(connection.value("PRAGMA journal_mode").value.toString(), "wal");
        QCOMPARE(connection.value("PRAGMA foreign_keys").value.toInt(), 1);
        QCOMPARE(connection.value("PRAGMA synchronous").value.toInt(), 2);
        QCOMPARE(connection.value("PRAGMA wal_autocheckpoint").value.toInt(), 256);
        QCOMPARE(connection.value("PRAGMA busy_timeout").value.toInt(), 100);
        QCOMPARE(connection.value("PRAGMA user_version").value.toInt(), schema_version);
        QVERIFY(!connection.run("INSERT INTO functions VALUES ('none', 'execute', NULL)").is_ok());
    }

    void what_a_removed_database_left_is_not_taken_for_the_new_one_s() {
        const sample::file_t file;
        connection_t former;  // a program that runs on
        QVERIFY(open_database(former, file.path(), 100).is_ok());
        QVERIFY(former.run("UPDATE items SET value = 'former'").is_ok());
        QVERIFY(QFile::remove(file.path()));
        QVERIFY(QFile::exists(file.path() + "-wal"));
        connection_t next;
        QCOMPARE(open_database(next, file.path(), 100).error, QString());
        QCOMPARE(next.value("SELECT count(*) FROM items").value.toInt(), 0);
        QVERIFY(former.run("UPDATE items SET value = 'later'").is_ok());
        QVERIFY(next.run("INSERT INTO items (id, value) VALUES ('i-1', 'next')").is_ok());
        former.close();
        QCOMPARE(next.value("SELECT value FROM items").value.toString(), "next");
        QCOMPARE(next.value("PRAGMA integrity_check").value.toString(), "ok");
    }

    /// Another program keeps the log from being taken away at every end.
    void a_log_of_small_changes_stays_small() {
        const sample::file_t file;
        connection_t other;
        QVERIFY(open_database(other, file.path(), 100).is_ok());
        connection_t connection;
        QVERIFY(open_database(connection, file.path(), 100).is_ok());
        qint64 largest = 0;
        for (int i = 0; i < 1000; ++i) {
            QVERIFY(connection.run("UPDATE items SET value = ?", {QString::number(i)}).is_ok());
            largest = qMax(largest, QFileInfo(file.path() + "-wal").size());
        }
        QVERIFY2(largest < 1536 * 1024, qPrintable(QString::number(largest)));
    }

    void a_file_without_a_layout_is_said_to_be_one() {
        const sample::file_t file;
        sample::foreign_writer_t writer(file.path());
        QVERIFY(writer.write({"PRAGMA user_version = 0"}));
        connection_t connection;
        QVERIFY(open_database(connection, file.path(), 0)
                    .error.endsWith("does not say its layout and was left as it is."));
    }

    void a_newer_layout_is_refused() {
        const sample::file_t file;
        sample::foreign_writer_t writer(file.path());
        QVERIFY(writer.write({"PRAGMA user_version = 5"}));
        connection_t connection;
        QCOMPARE(open_database(connection, file.path(), 0).error,
                 QStringLiteral("The database %1 has layout 5, but this program knows up to 4.")
                     .arg(file.path()));
        QCOMPARE(writer.read("PRAGMA user_version"), "5");
    }

    void a_damaged_file_is_refused_and_left_alone_data() {
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<bool>("cut");
        QTest::newRow("no database at all") << qint64(0) << false;
        QTest::newRow("a page of zeros") << qint64(4096) << false;
        QTest::newRow("truncated") << qint64(10000) << true;
    }
    void a_damaged_file_is_refused_and_left_alone() {
        QFETCH(qint64, offset);
        QFETCH(bool, cut);
        const sample::file_t file;
        {
            QFile raw(file.path());
            QVERIFY(raw.open(QIODevice::ReadWrite));
            QVERIFY(cut ? raw.resize(offset) : raw.seek(offset));
            QVERIFY(cut || raw.write(QByteArray(4096, '\0')) == 4096);
        }
        const QByteArray before = content(file.path());
        connection_t connection;
        const QString error = open_database(connection, file.path(), 0).error;
        QVERIFY2(error.startsWith("The database " + file.path() +
                                  " is damaged and was left as it is; torlanctl import --replace "),
                 qPrintable(error));
        QCOMPARE(content(file.path()), before);
    }

    void another_program_s_database_is_refused() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("other.db");
        {
            sample::foreign_writer_t writer(path);
            QVERIFY(writer.write({"CREATE TABLE notes (text)"}));
        }
        connection_t connection;
        QCOMPARE(open_database(connection, path, 0).error,
                 QStringLiteral("The file %1 is not an installation database.").arg(path));
    }

    void a_folder_that_is_not_there_is_one_sentence() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("none/installation.db");
        connection_t connection;
        const QString error = open_database(connection, path, 0).error;
        QVERIFY2(error.startsWith("The database " + path + " cannot be opened: "),
                 qPrintable(error));
    }

    void two_programs_may_create_it_at_once() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("installation.db");
        QString errors[2];
        const auto open = [&path](QString* _error) {
            connection_t connection;
            *_error = open_database(connection, path, 5000).error;
        };
        std::thread first(open, &errors[0]);
        std::thread second(open, &errors[1]);
        first.join();
        second.join();
        QCOMPARE(errors[0] + errors[1], QString());
    }

    void a_file_in_use_is_not_called_damaged() {
        const sample::file_t file;
        connection_t other;
        QVERIFY(other.open(file.path(), connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(other.run("PRAGMA locking_mode = EXCLUSIVE").is_ok());
        QVERIFY(other.run("UPDATE items SET value = '1'").is_ok());
        connection_t connection;
        QCOMPARE(open_database(connection, file.path(), 0).error,
                 QStringLiteral("The database %1 is in use by another program.").arg(file.path()));
    }

    void a_missing_table_is_named_data() {
        QTest::addColumn<QString>("table");
        for (const QString& table : table_names()) {
            QTest::newRow(qPrintable(table)) << table;
        }
    }
    void a_missing_table_is_named() {
        QFETCH(QString, table);
        const sample::file_t file;
        sample::foreign_writer_t writer(file.path());
        QVERIFY2(writer.write({"DROP TABLE " + table}), qPrintable(writer.error));
        connection_t connection;
        QCOMPARE(open_database(connection, file.path(), 0).error,
                 QStringLiteral("The database %1 lacks the table %2 and was left as it is.")
                     .arg(file.path(), table));
    }

    void tables_without_a_layout_are_refused() {
        const sample::file_t file;
        sample::foreign_writer_t writer(file.path());
        QVERIFY(writer.write({"PRAGMA user_version = 0"}));
        connection_t connection;
        QCOMPARE(open_database(connection, file.path(), 0).error,
                 QStringLiteral("The database %1 does not say its layout and was left as it is.")
                     .arg(file.path()));
    }

    void what_a_killed_program_half_wrote_is_taken_back() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("installation.db");
        const QString copy = folder.filePath("killed.db");
        {
            // The files as they are when a program is killed while it writes the first pages.
            connection_t writer;
            QVERIFY(writer.open(path, connection_t::access_t::read_write, 0).is_ok());
            QVERIFY(writer.run("CREATE TABLE first (a)").is_ok());
            QVERIFY(writer.run("PRAGMA cache_size = 1").is_ok());
            QVERIFY(writer.run("BEGIN IMMEDIATE").is_ok());
            QVERIFY(writer.run("DROP TABLE first").is_ok());
            QVERIFY(writer.run("CREATE TABLE second (a)").is_ok());
            QVERIFY(writer
                        .run("WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                             "LIMIT 1000) INSERT INTO second SELECT randomblob(1000) FROM n")
                        .is_ok());
            QVERIFY(QFile::copy(path, copy));
            QVERIFY(QFile::copy(path + "-journal", copy + "-journal"));
        }
        connection_t connection;
        QCOMPARE(open_database(connection, copy, 0).error,
                 QStringLiteral("The file %1 is not an installation database.").arg(copy));
        QCOMPARE(
            sample::foreign_writer_t(copy).read("SELECT group_concat(name) FROM sqlite_master"),
            "first");
    }
};

QTEST_GUILESS_MAIN(tst_open_database)
#include "tst_open_database.moc"
