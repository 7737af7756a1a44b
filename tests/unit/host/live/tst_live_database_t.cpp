#include "live/live_database_t.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <cstdio>

#include "kit/notifier_log_t.h"
#include "kit/sample_installation.h"
#include "store/store_editor_t.h"

using namespace database::live;

namespace {

database::store::change_mark_t newest(const QString& _path) {
    database::store::connection_t connection;
    if (!connection.open(_path, database::store::connection_t::access_t::read_only, 5000).is_ok()) {
        return {};
    }
    return {connection.file().value_or(database::store::file_identity_t{}),
            database::store::change_log_t(connection).newest_ever().value};
}

}  // namespace

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

    void change_is_looked_for_when_somebody_waits_for_it() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        for (QFileSystemWatcher* watcher : live.findChildren<QFileSystemWatcher*>()) {
            watcher->blockSignals(true);
        }
        QCOMPARE(live.lag(newest(file.path())), QString());
        notifier_log_t log(&db, live.feed());
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write({"UPDATE elements SET name = 'x' WHERE id = 'e-lamp'"}));
        QCOMPARE(live.lag(newest(file.path())), QString());
        QCOMPARE(log.lines, QStringList({"element e-lamp", "access_changed"}));
        auto later = newest(file.path());
        ++later.sequence;
        QCOMPARE(live.lag(later), "the server has not read it.");
    }

    // The rows of its own saves are never read.
    void own_saves_are_no_reason_to_lag() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, 1, 0, 64});
        QVERIFY(live.open(file.path()).is_ok());
        const qint64 before = newest(file.path()).sequence;
        live.writer()->write_item("i-lamp", "1");
        QTRY_VERIFY(newest(file.path()).sequence > before);
        QCOMPARE(live.lag(newest(file.path())), QString());
    }

    void change_of_another_file_is_not_followed() {
        const sample::file_t file;
        const sample::file_t another;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        QCOMPARE(live.lag(newest(another.path())),
                 "the server has another database open in its place.");
    }

    void bulk_that_waits_for_its_turn_lags() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 0});
        QVERIFY(live.open(file.path()).is_ok());
        sample::foreign_writer_t other(file.path());
        QStringList lags;
        for (const char* const value : {"1", "2"}) {
            QVERIFY(other.write({QString("UPDATE items SET value = '%1'").arg(value)}));
            lags.append(live.lag(newest(file.path())));
        }
        QCOMPARE(lags.constLast(), "the server still takes over a large change.");
        QTRY_COMPARE(live.lag(newest(file.path())), QString());
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
        QVERIFY(live.open(path).error.contains("is damaged and was left as it is;"));
    }

    void a_database_that_is_replaced_is_read_anew() {
        const sample::file_t file;
        auto other = sample::installation();
        other.users.remove("u-bob");
        other.permissions.remove("u-bob");
        other.items["i-dim"].value = "77";
        const sample::file_t next(other);
        database::database_t db;
        live_database_t live(&db, {10, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        notifier_log_t log(&db, live.feed());
        QSignalSpy told(&live, &live_database_t::failed);
        live.writer()->write_item("i-lamp", "1");
        QVERIFY(rename(QFile::encodeName(next.path()), QFile::encodeName(file.path())) == 0);
        QTRY_COMPARE(live.read_users().value.keys(), QStringList("u-alice"));
        QCOMPARE(db.getRealtime()->getItems()->list("i-dim")->getValue(), "77");
        QVERIFY(log.lines.contains("users_changed"));
        QCOMPARE(told.size(), 1);
        QCOMPARE(told.first().first().toString(),
                 QStringLiteral("The database %1 was replaced by another file. That was read anew.")
                     .arg(file.path()));
        // What waited for its save goes into the new file.
        QCOMPARE(live.close().error, QString());
        QCOMPARE(sample::foreign_writer_t(file.path()).read(lamp), "1");
    }

    void a_database_that_is_removed_is_waited_for() {
        const sample::file_t file;
        const QString away = file.path() + ".away";
        database::database_t db;
        live_database_t live(&db, {10, 10, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        QSignalSpy told(&live, &live_database_t::failed);
        QVERIFY(QFile::rename(file.path(), away));
        QTRY_VERIFY(!told.isEmpty());
        QCOMPARE(told.first().first().toString(),
                 QStringLiteral("The database %1 was removed. Nothing is saved until an "
                                "installation is in its place.")
                     .arg(file.path()));
        live.writer()->write_item("i-lamp", "1");
        QTRY_COMPARE(told.size(), 2);
        QVERIFY(told.last().first().toString().startsWith("Values cannot be saved: "));
        QVERIFY(!QFile::exists(file.path()));
        QVERIFY(QFile::rename(away, file.path()));
        QTRY_COMPARE(sample::foreign_writer_t(file.path()).read(lamp), "1");
        QCOMPARE(told.size(), 2);
    }

    void a_file_that_is_only_begun_is_not_taken() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {10, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        QSignalSpy told(&live, &live_database_t::failed);
        QVERIFY(QFile::remove(file.path()));
        database::store::sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        QTRY_VERIFY(!told.isEmpty());
        QVERIFY(!db.getPersistent()->getData()->getElements()->getObjects().isEmpty());
        auto other = sample::installation();
        other.users.remove("u-bob");
        other.permissions.remove("u-bob");
        QCOMPARE(store.replace(other).error, QString());
        QTRY_COMPARE(live.read_users().value.keys(), QStringList("u-alice"));
    }

    void a_stop_says_what_it_cannot_save() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {never, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        live.writer()->write_item("i-lamp", "1");
        live.writer()->write_scenario("s-night", true);
        sample::foreign_writer_t other(file.path());
        database::store::connection_t lock;
        using access_t = database::store::connection_t::access_t;
        QVERIFY(lock.open(file.path(), access_t::read_write, 0).is_ok());
        QVERIFY(lock.run("BEGIN IMMEDIATE").is_ok());
        QCOMPARE(live.close().error,
                 QStringLiteral("2 values are not saved and lost: The database %1 is in use by "
                                "another program.")
                     .arg(file.path()));
        QCOMPARE(live.close().error, QString());  // told once
    }

    void a_missing_table_is_told_once_and_all_is_read_when_it_is_back() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {10, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        QSignalSpy told(&live, &live_database_t::failed);
        sample::foreign_writer_t other(file.path());
        const QString table =
            other.read("SELECT sql FROM sqlite_master WHERE name = 'permissions'");
        QVERIFY2(other.write({"DROP TABLE permissions",
                              "UPDATE elements SET name = 'Lamp' WHERE id = 'e-lamp'"}),
                 qPrintable(other.error));
        QTRY_COMPARE(told.size(), 1);
        QSignalSpy looks(live.findChild<wal_watch_t*>(), &wal_watch_t::polled);
        QTRY_VERIFY(looks.size() > 3);
        QCOMPARE(told.size(), 1);
        QVERIFY(other.write({table, "INSERT INTO permissions VALUES ('u-bob', 'e-night', 1)"}));
        QTRY_COMPARE(db.getPersistent()->getData()->getElements()->list("e-lamp")->getName(),
                     "Lamp");
        QCOMPARE(db.getPersistent()->getData()->check_permission_element_by_userid(
                     "e-night", "u-bob", reading),
                 1);
    }

    void a_quiet_database_has_an_empty_log() {
        const sample::file_t file;
        database::database_t db;
        live_database_t live(&db, {10, never, 5, 64});
        QVERIFY(live.open(file.path()).is_ok());
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write({"UPDATE items SET value = '1' WHERE id = 'i-lamp'"}));
        QVERIFY(QFile::exists(file.path() + "-wal"));
        QTRY_COMPARE(QFileInfo(file.path() + "-wal").size(), qint64(0));
        QTRY_COMPARE(db.getRealtime()->getItems()->list("i-lamp")->getValue(), "1");
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
        QVERIFY(live.close().is_ok());
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
    static constexpr auto reading =
        static_cast<database::persistent::objects::ps_object_user_t::PermissionFlag>(1);
    const QString lamp = "SELECT value FROM items WHERE id = 'i-lamp'";
};

QTEST_GUILESS_MAIN(tst_live_database_t)
#include "tst_live_database_t.moc"
