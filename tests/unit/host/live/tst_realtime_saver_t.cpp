#include "live/realtime_saver_t.h"

#include <QSignalSpy>
#include <QTest>

#include "kit/notifier_log_t.h"
#include "kit/sample_installation.h"
#include "store/open_database.h"
#include "store/transaction_t.h"

using namespace database::live;

class tst_realtime_saver_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        file = std::make_unique<sample::file_t>();
        other = std::make_unique<sample::foreign_writer_t>(file->path());
        saver.reset();
        feed.reset();
        db = std::make_unique<database::database_t>();
        realtime = std::make_unique<realtime_writer_t>(db.get());
        gate = std::make_unique<write_gate_t>(db.get());
        connection = std::make_unique<database::store::connection_t>();
        QVERIFY(database::store::open_database(*connection, file->path(), 0).is_ok());
        feed = std::make_unique<change_feed_t>(*connection, db.get(), realtime.get(), gate.get(),
                                               change_feed_t::options_t{});
        QVERIFY(feed->load().is_ok());
        make_saver(10, 5);
    }

    void a_change_is_saved_after_the_delay() {
        realtime->write_item("i-lamp", "1");
        realtime->write_scenario("s-night", true);
        QCOMPARE(on_disk("i-lamp"), "0");
        QTRY_COMPARE(on_disk("i-lamp"), "1");
        QCOMPARE(other->read("SELECT execution FROM scenarios"), "1");
        QVERIFY(realtime->unsaved_items().empty());
        QVERIFY(realtime->unsaved_scenarios().empty());
    }

    void an_emptied_value_is_saved() {
        realtime->write_item("i-lamp", QString());
        QCOMPARE(saver->save().error, QString());
        QCOMPARE(on_disk("i-lamp"), "");
    }

    void further_changes_put_the_save_off_only_so_often() {
        make_saver(60, 3);
        QTimer bus;
        int writes = 0;
        connect(&bus, &QTimer::timeout, this,
                [this, &writes] { realtime->write_item("i-lamp", QString::number(++writes)); });
        bus.start(5);
        // The bus never pauses as long as the delay: only the limit lets the save come.
        QTRY_VERIFY(on_disk("i-lamp") != "0");
        QVERIFY(writes > 3);
    }

    void an_own_save_does_not_come_back() {
        feed->check();
        notifier_log_t log(db.get(), feed.get());
        realtime->write_item("i-lamp", "1");
        QCOMPARE(saver->save().error, QString());
        feed->check();
        QCOMPARE(log.lines, QStringList("item i-lamp"));
        QCOMPARE(other->read("SELECT count(*) FROM changes"), "0");
        QVERIFY(other->write({"UPDATE items SET value = '2' WHERE id = 'i-lamp'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList({"item i-lamp", "item i-lamp"}));
    }

    void a_foreign_change_before_the_save_is_not_lost() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(other->write({"UPDATE items SET value = '50' WHERE id = 'i-dim'",
                              "UPDATE elements SET name = 'Lamp' WHERE id = 'e-lamp'"}));
        realtime->write_item("i-lamp", "1");
        QCOMPARE(saver->save().error, QString());
        QCOMPARE(log.lines,
                 QStringList({"item i-lamp", "element e-lamp", "item i-dim", "access_changed"}));
        QCOMPARE(db->getRealtime()->getItems()->list("i-dim")->getValue(), "50");
        QCOMPARE(on_disk("i-dim"), "50");
        QCOMPARE(on_disk("i-lamp"), "1");
    }

    void for_one_item_the_store_s_value_wins() {
        realtime->write_item("i-lamp", "1");
        QVERIFY(other->write({"UPDATE items SET value = '7' WHERE id = 'i-lamp'"}));
        QCOMPARE(saver->save().error, QString());
        QCOMPARE(on_disk("i-lamp"), "7");
        QCOMPARE(db->getRealtime()->getItems()->list("i-lamp")->getValue(), "7");
    }

    void an_item_that_was_removed_meanwhile_is_not_saved() {
        realtime->write_item("i-lamp", "1");
        realtime->write_item("i-dim", "2");
        QVERIFY(other->write({"DELETE FROM items WHERE id = 'i-lamp'"}));
        QCOMPARE(saver->save().error, QString());
        QCOMPARE(on_disk("i-dim"), "2");
        QCOMPARE(other->read("SELECT count(*) FROM items WHERE id = 'i-lamp'"), "0");
    }

    void while_another_program_writes_the_save_waits_for_its_turn() {
        QSignalSpy failed(saver.get(), &realtime_saver_t::failed);
        database::store::connection_t long_writer;
        using access_t = database::store::connection_t::access_t;
        QVERIFY(long_writer.open(file->path(), access_t::read_write, 0).is_ok());
        QVERIFY(long_writer.run("BEGIN IMMEDIATE").is_ok());
        QVERIFY(long_writer.run("UPDATE items SET value = '50' WHERE id = 'i-dim'").is_ok());
        realtime->write_item("i-lamp", "1");
        QVERIFY(failed.wait());
        QCOMPARE(realtime->unsaved_items().size(), size_t(1));
        QVERIFY(long_writer.run("COMMIT").is_ok());
        QTRY_COMPARE(on_disk("i-lamp"), "1");
        QCOMPARE(db->getRealtime()->getItems()->list("i-dim")->getValue(), "50");
    }

    void a_missing_table_is_told_once() {
        QSignalSpy failed(saver.get(), &realtime_saver_t::failed);
        QVERIFY(other->write({"ALTER TABLE items RENAME TO things"}));
        make_told(&failed);
        QCOMPARE(failed.size(), 1);
        QVERIFY(failed.constFirst().constFirst().toString().startsWith("Values cannot be saved: "));
        QVERIFY(other->write({"ALTER TABLE things RENAME TO items"}));
        QTRY_COMPARE(on_disk("i-lamp"), "1");
    }

    void a_file_that_is_not_in_place_takes_nothing() {
        realtime->write_item("i-lamp", "1");
        QVERIFY(QFile::rename(file->path(), file->path() + ".former"));
        QVERIFY(saver->save().error.endsWith(" was removed."));
        QVERIFY(QFile::rename(file->path() + ".former", file->path()));
        QCOMPARE(on_disk("i-lamp"), "0");
        QCOMPARE(saver->save().error, QString());
        QCOMPARE(on_disk("i-lamp"), "1");
    }

 private:
    /// Lets it fail several times.
    void make_told(QSignalSpy* _failed) {
        realtime->write_item("i-lamp", "1");
        QTRY_VERIFY(!_failed->isEmpty());
        QVERIFY(!_failed->wait(100));  // ten times the delay
    }

    void make_saver(int _delay_ms, int _iterations) {
        saver = std::make_unique<realtime_saver_t>(*connection, db.get(), realtime.get(),
                                                   feed.get(), _delay_ms, _iterations);
    }
    QString on_disk(const QString& _id) {
        return other->read("SELECT value FROM items WHERE id = '" + _id + "'");
    }

    std::unique_ptr<sample::file_t> file;
    std::unique_ptr<sample::foreign_writer_t> other;
    std::unique_ptr<database::database_t> db;
    std::unique_ptr<realtime_writer_t> realtime;
    std::unique_ptr<write_gate_t> gate;
    std::unique_ptr<database::store::connection_t> connection;
    std::unique_ptr<change_feed_t> feed;
    std::unique_ptr<realtime_saver_t> saver;
};

QTEST_GUILESS_MAIN(tst_realtime_saver_t)
#include "tst_realtime_saver_t.moc"
