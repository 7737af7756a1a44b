#include "live/live_database_t.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include "kit/notifier_log_t.h"
#include "kit/sample_installation.h"
#include "store/store_editor_t.h"

using namespace database::live;

class tst_live_database_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_foreign_write_is_seen_through_the_log_alone() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        notifier_log_t log(&db, live.feed());
        sample::foreign_writer_t other(file.path());
        for (int i = 0; i < 50; ++i) {
            const QString name = QString::number(i);
            log.lines.clear();
            QVERIFY(other.write({"UPDATE elements SET name = '" + name + "' WHERE id = 'e-lamp'"}));
            QTRY_COMPARE(log.lines, QStringList({"element e-lamp", "access_changed"}));
            QCOMPARE(db.getPersistent()->getData()->getElements()->list("e-lamp")->getName(), name);
        }
    }

    void a_foreign_write_is_seen_by_the_poll_alone() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {5, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        // As after a lost file notification.
        for (QFileSystemWatcher* watcher : live.findChildren<QFileSystemWatcher*>()) {
            watcher->blockSignals(true);
        }
        notifier_log_t log(&db, live.feed());
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write({"UPDATE items SET value = '1' WHERE id = 'i-lamp'"}));
        QTRY_COMPARE(log.lines, QStringList("item i-lamp"));
    }

    void the_editor_s_changes_are_seen() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        notifier_log_t log(&db, live.feed());
        database::store::sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        database::store::store_editor_t editor(store.connection());
        QVERIFY(editor.grant("bob", "e-lamp", 0).is_ok());
        QTRY_COMPARE(log.lines, QStringList({"element e-lamp", "access_changed"}));
        log.lines.clear();
        QVERIFY(editor.remove_user("alice").is_ok());
        QTRY_COMPARE(log.lines,
                     QStringList({"users_changed", "user u-alice", "element e-lamp",
                                  "element e-night", "element e-therm", "access_changed"}));
    }

    void setting_a_value_that_only_the_disk_holds_is_seen() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        live.writer()->write_item("i-lamp", "1");
        notifier_log_t log(&db, live.feed());
        database::store::sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        QVERIFY(
            database::store::store_editor_t(store.connection()).set_item("i-lamp", "0").is_ok());
        QTRY_COMPARE(log.lines, QStringList("item i-lamp"));
        QCOMPARE(db.getRealtime()->getItems()->list("i-lamp")->getValue(), "0");
    }

    void values_are_back_after_a_restart() {
        const sample::file_t file;
        {
            database::database_t db;
            live_database_t live(&db, {never, never, 5, 64});
            QVERIFY(live.open(file.path()).is_ok());
            live.writer()->write_item("i-lamp", "1");
            live.writer()->write_scenario("s-night", true);
        }
        database::database_t db;
        live_database_t live(&db, {});
        QVERIFY(live.open(file.path()).is_ok());
        QCOMPARE(db.getRealtime()->getItems()->list("i-lamp")->getValue(), "1");
        QCOMPARE(db.getRealtime()->getScenary()->list("s-night")->getExecution(), true);
    }

    void the_users_come_with_their_hashes() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {});
        QVERIFY(live.open(file.path()).is_ok());
        const auto users = live.read_users();
        QCOMPARE(users.error, QString());
        QVERIFY(users.value == sample::installation().users);
    }

    void a_user_against_the_rule_is_no_account_and_told_once() {
        const sample::file_t file;
        sample::foreign_writer_t writer(file.path());
        QVERIFY(writer.write({"PRAGMA ignore_check_constraints = ON",
                              "INSERT INTO users VALUES ('u-eve', 'e' || char(10) || 've', 'x')"}));
        database::database_t db;
        live_database_t live(&db, {});
        QSignalSpy told(&live, &live_database_t::failed);
        QVERIFY(live.open(file.path()).is_ok());
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(live.read_users().value.keys(), QStringList({"u-alice", "u-bob"}));
        }
        QCOMPARE(told.count(), 1);
        QCOMPARE(told.last().first().toString(),
                 QStringLiteral("Database %1: users/u-eve is left out: the user name must be 1 to "
                                "64 of the characters 0-9 a-z A-Z . _ -.")
                     .arg(file.path()));
    }

    void a_file_that_is_not_there_is_an_empty_installation() {
        const QTemporaryDir folder;
        database::database_t db;
        live_database_t live(&db, {});
        QCOMPARE(live.open(folder.filePath("installation.db")).error, QString());
        QVERIFY(db.getPersistent()->getData()->getElements()->getObjects().isEmpty());
    }

    void a_damaged_file_fills_nothing() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("installation.db");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no database") > 0);
        file.close();
        database::database_t db;
        live_database_t live(&db, {});
        QVERIFY(live.open(path).error.endsWith("is damaged and was left as it is."));
    }

    void the_database_may_die_first() {
        const sample::file_t file;
        auto db = std::make_unique<database::database_t>();
        live_database_t live(db.get(), {1, 1, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        live.writer()->write_item("i-lamp", "1");
        db.reset();
        QSignalSpy failed(&live, &live_database_t::failed);
        QVERIFY(!failed.wait(20));
        QVERIFY(live.flush().is_ok());
    }

    void the_shipped_times_are_these() {
        const live_database_t::options_t shipped;
        QCOMPARE(shipped.poll_ms, 1000);
        QCOMPARE(shipped.save_delay_ms, 500);
        QCOMPARE(shipped.save_iterations, 5);
        QCOMPARE(shipped.bulk_limit, 64);
    }

 private:
    static constexpr int never = 1000000;
};

QTEST_GUILESS_MAIN(tst_live_database_t)
#include "tst_live_database_t.moc"
