#include <QFile>
#include <QSqlQuery>
#include <QTest>

#include "kit/sample_installation.h"
#include "store/transaction_t.h"

using namespace database::store;

class tst_connection_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() { file = std::make_unique<sample::file_t>(); }

    void each_calls_for_every_row() {
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        QStringList ids;
        QVERIFY(connection
                    .each("SELECT id FROM elements WHERE id > ? ORDER BY id", {"e-lamp"},
                          [&ids](const QSqlQuery& _row) { ids.append(_row.value(0).toString()); })
                    .is_ok());
        QCOMPARE(ids, QStringList({"e-night", "e-therm"}));
    }

    void a_wrong_statement_is_one_sentence_with_the_path() {
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        const base::result_t result = connection.run("SELECT x FROM nowhere");
        QVERIFY(!result.is_ok());
        QVERIFY2(result.error.startsWith("Database " + file->path()), qPrintable(result.error));
        QVERIFY2(result.error.contains("no such table: nowhere"), qPrintable(result.error));
    }

    void a_value_that_is_not_there_is_no_failure() {
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        const auto none = connection.value("SELECT value FROM items WHERE id = 'i-none'");
        QVERIFY(none.is_ok());
        QVERIFY(!none.value.isValid());
        QVERIFY(!connection.value("SELECT value FROM nowhere").is_ok());
        QCOMPARE(connection.cause(), connection_t::cause_t::other);
    }

    void a_read_that_breaks_off_is_no_answer() {
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        int rows = 0;
        // The smallest whole number has no positive one: the second row fails.
        const auto result = connection.each(
            "SELECT abs(column1) FROM (VALUES (1), (-9223372036854775807 - 1), (3))", {},
            [&rows](const QSqlQuery&) { ++rows; });
        QVERIFY2(result.error.contains("integer overflow"), qPrintable(result.error));
        QCOMPARE(rows, 1);
    }

    void a_busy_file_is_told_from_a_damaged_one() {
        connection_t other;
        QVERIFY(other.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(other.run("PRAGMA locking_mode = EXCLUSIVE").is_ok());
        QVERIFY(other.run("UPDATE items SET value = '1'").is_ok());
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        QCOMPARE(connection.value("SELECT count(*) FROM items").error,
                 QStringLiteral("The database %1 is in use by another program.").arg(file->path()));
        QCOMPARE(connection.cause(), connection_t::cause_t::busy);

        const QTemporaryDir folder;
        const QString path = folder.filePath("damaged.db");
        QFile damaged(path);
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write(QByteArray(5000, 'x')) > 0);
        damaged.close();
        QVERIFY(connection.open(path, connection_t::access_t::read_write, 0).is_ok());
        const QString error = connection.value("SELECT count(*) FROM items").error;
        QVERIFY2(error.startsWith("The database " + path + " is damaged: "), qPrintable(error));
        QCOMPARE(connection.cause(), connection_t::cause_t::damaged);
    }

    void a_file_that_was_removed_or_replaced_is_told() {
        connection_t connection;
        QVERIFY(!connection.check_place().is_ok());
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        QCOMPARE(connection.check_place().error, QString());
        QVERIFY(QFile::rename(file->path(), file->path() + ".former"));
        QCOMPARE(connection.check_place().error,
                 QStringLiteral("The database %1 was removed.").arg(file->path()));
        QVERIFY(QFile::copy(file->path() + ".former", file->path()));
        QCOMPARE(connection.check_place().error,
                 QStringLiteral("The database %1 was replaced by another file.").arg(file->path()));
        connection.close();
        QVERIFY(!connection.check_place().is_ok());
    }

    void a_finished_read_does_not_hold_the_old_state() {
        connection_t reader;
        QVERIFY(reader.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        const QString sql = "SELECT value FROM items WHERE id = 'i-dim'";
        QCOMPARE(reader.value(sql).value.toString(), "40");
        sample::foreign_writer_t other(file->path());
        QVERIFY(other.write({"UPDATE items SET value = '41' WHERE id = 'i-dim'"}));
        QCOMPARE(reader.value(sql).value.toString(), "41");
    }

    void read_only_refuses_to_write() {
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_only, 0).is_ok());
        QVERIFY(!connection.run("DELETE FROM items").is_ok());
    }

    void an_uncommitted_transaction_leaves_nothing() {
        connection_t connection;
        QVERIFY(connection.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        {
            transaction_t transaction(connection, transaction_t::kind_t::writing);
            QVERIFY(transaction.begun().is_ok());
            QVERIFY(connection.run("DELETE FROM items").is_ok());
        }
        QCOMPARE(connection.value("SELECT count(*) FROM items").value.toInt(), 5);
    }

    void a_second_writer_waits_no_longer_than_the_busy_time() {
        connection_t first;
        connection_t second;
        QVERIFY(first.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(second.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        transaction_t holding(first, transaction_t::kind_t::writing);
        QVERIFY(holding.begun().is_ok());
        transaction_t refused(second, transaction_t::kind_t::writing);
        QVERIFY(!refused.begun().is_ok());
    }

 private:
    std::unique_ptr<sample::file_t> file;
};

QTEST_GUILESS_MAIN(tst_connection_t)
#include "tst_connection_t.moc"
