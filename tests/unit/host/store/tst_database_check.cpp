#include "store/database_check.h"

#include <QFile>
#include <QTest>

#include "kit/killed_child.h"
#include "kit/sample_installation.h"
#include "store/open_database.h"

using namespace database::store;

/// When a file is an installation. What open_database() refuses is tried in tst_open_database.
class tst_database_check : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        folder = std::make_unique<QTemporaryDir>();
        path = folder->filePath("installation.db");
    }

    void a_committed_import_makes_an_installation() {
        const sample::file_t file;
        QVERIFY(holds_installation(file.path(), 0).value);
        QVERIFY(!sample::foreign_writer_t(file.path())
                     .read("SELECT value FROM meta WHERE key = 'imported'")
                     .isEmpty());
    }

    void an_empty_installation_is_one_too() {
        const sample::file_t file{database::installation::installation_t()};
        QVERIFY(holds_installation(file.path(), 0).value);
    }

    void a_file_that_was_only_begun_is_none() {
        const auto none = [this] {
            const auto found = holds_installation(path, 0);
            return found.is_ok() && !found.value;
        };
        QVERIFY(none());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.close();
        QVERIFY(none());
        {
            connection_t connection;
            QVERIFY(connection.open(path, connection_t::access_t::read_write, 0).is_ok());
            QVERIFY(connection.run("PRAGMA journal_mode = WAL").is_ok());
        }
        QVERIFY(none());
        connection_t connection;
        QVERIFY(open_database(connection, path, 0).is_ok());
        QVERIFY(none());
        QVERIFY(connection.run("INSERT INTO elements (id, type) VALUES ('e-1', 1)").is_ok());
        QVERIFY(!none());
    }

    void what_cannot_be_told_is_no_answer() {
        const sample::file_t file;
        connection_t other;
        QVERIFY(other.open(file.path(), connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(other.run("PRAGMA locking_mode = EXCLUSIVE").is_ok());
        QVERIFY(other.run("UPDATE items SET value = '1'").is_ok());
        QVERIFY(
            holds_installation(file.path(), 0).error.endsWith(" is in use by another program."));
        QFile damaged(path);
        QVERIFY(damaged.open(QIODevice::WriteOnly) && damaged.write(QByteArray(5000, 'x')) > 0);
        damaged.close();
        QVERIFY(holds_installation(path, 0).error.contains("torlanctl import --replace"));
    }

    void killed_at_any_moment_of_the_first_import_the_next_start_imports() {
        int kills = 0;
        int whole = 0;
        for (killed_child::ending_t ending = killed_child::ending_t::killed;
             ending == killed_child::ending_t::killed; ++kills) {
            init();
            ending = killed_child::run(kills + 1, [this] { return import().isEmpty(); });
            QVERIFY(ending != killed_child::ending_t::failed);
            const auto found = holds_installation(path, 1000);
            QCOMPARE(found.error, QString());
            whole += int(found.value);
            if (!found.value) {
                QCOMPARE(import(), QString());
            }
            sqlite_store_t store;
            QCOMPARE(store.open(path).error, QString());
            QVERIFY(store.read().value == sample::installation());
        }
        QVERIFY2(kills > 20, qPrintable(QString::number(kills)));
        QVERIFY(whole >= 1 && whole < kills);
    }

 private:
    QString import() const {
        sqlite_store_t store;
        const base::result_t opened = store.open(path);
        return opened.is_ok() ? store.replace(sample::installation()).error : opened.error;
    }

    std::unique_ptr<QTemporaryDir> folder;
    QString path;
};

QTEST_GUILESS_MAIN(tst_database_check)
#include "tst_database_check.moc"
