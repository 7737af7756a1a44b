#include <QSignalSpy>
#include <QTest>

#include "kit/notifier_log_t.h"
#include "kit/sample_installation.h"
#include "live/change_feed_t.h"
#include "store/open_database.h"

using namespace database::live;

namespace {

QString lamp(int _index) {
    return QStringLiteral("e-%1").arg(_index);
}

}  // namespace

/// A feed of five lamps that announces two at a time; alice and bob may do everything with all.
class tst_change_feed_portions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        file = std::make_unique<sample::file_t>();
        auto whole = sample::installation();
        whole.elements.clear();
        whole.permissions.clear();
        for (int index = 0; index < 5; ++index) {
            database::installation::element_t& element = whole.elements[lamp(index)];
            element.name = "Lamp";
            element.type = 1;
            element.functions["execute"] = "i-lamp";
            whole.permissions["u-alice"][lamp(index)] = 3;
            whole.permissions["u-bob"][lamp(index)] = 3;
        }
        import(whole);
        writer = std::make_unique<sample::foreign_writer_t>(file->path());
        start();
    }

    void nothing_is_shown_before_drivers_have_begun() {
        QCOMPARE(known(), QStringList());
        notifier_log_t log(db.get(), feed.get());
        QSignalSpy shown(feed.get(), &change_feed_t::shown);
        feed->show();
        QCOMPARE(log.lines, QStringList());
        take();
        QCOMPARE(log.lines,
                 QStringList({"element e-0", "element e-1", "element e-2", "element e-3"}));
        QCOMPARE(known(), QStringList({"e-0", "e-1", "e-2", "e-3"}));
        take();
        take();
        QCOMPARE(known().size(), 5);
        QCOMPARE(shown.size(), 0);
        take_all();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(log.lines.size(), 5);
    }

    void what_is_few_is_there_at_once_and_told_when_it_has_left() {
        QVERIFY(writer->write({"DELETE FROM elements WHERE id > 'e-1'"}));
        start();
        QCOMPARE(known(), QStringList({"e-0", "e-1"}));
        notifier_log_t log(db.get(), feed.get());
        QSignalSpy shown(feed.get(), &change_feed_t::shown);
        feed->show();
        take();
        QCOMPARE(shown.size(), 0);
        take();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(log.lines, QStringList());
    }

    void a_change_meanwhile_counts() {
        feed->show();
        QVERIFY(writer->write({"UPDATE elements SET name = 'other' WHERE id = 'e-4'",
                               "DELETE FROM elements WHERE id = 'e-3'"}));
        feed->check();
        take_all();
        QCOMPARE(known(), QStringList({"e-0", "e-1", "e-2", "e-4"}));
        QCOMPARE(db->getPersistent()->getData()->getElements()->list("e-4")->getName(), "other");
    }

    void an_import_is_announced_in_portions_what_hides_first_and_users_last() {
        show();
        QVERIFY(writer->write({"UPDATE permissions SET bits = 2 WHERE element = 'e-4'",
                               "INSERT INTO changes (tab, key) VALUES ('bulk', '')"}));
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        QCOMPARE(log.lines, QStringList({"users_changed", "element e-4", "element e-0",
                                         "element e-1", "access_changed", "reloaded"}));
        take_all();
        QCOMPARE(log.lines.mid(6), QStringList({"element e-2", "element e-3", "users"}));
    }

    void an_import_that_leaves_few_takes_the_others_away_in_portions() {
        show();
        QVERIFY(writer->write({"DELETE FROM elements WHERE id > 'e-0'",
                               "INSERT INTO changes (tab, key) VALUES ('bulk', '')"}));
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        take_all();
        QVERIFY(!log.lines.contains("database"));
        for (int index = 0; index < 5; ++index) {
            QVERIFY(log.lines.contains("element " + lamp(index)));
        }
    }

    void a_name_that_an_import_of_few_elements_gives_again_is_let_in_at_once() {
        QVERIFY(writer->write({"DELETE FROM elements WHERE id > 'e-1'"}));
        start();
        show();
        QVERIFY(writer->write({"DELETE FROM users WHERE id = 'u-bob'",
                               "INSERT INTO users VALUES ('u-new', 'bob', 'hash')",
                               "INSERT INTO changes (tab, key) VALUES ('bulk', '')"}));
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        QVERIFY(feed->held_back().empty());
        QCOMPARE(log.lines,
                 QStringList({"users_changed", "database", "access_changed", "reloaded"}));
    }

    void many_items_are_no_bulk_signal() {
        show();
        QVERIFY(writer->write({"UPDATE items SET value = 'x'"}));
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        QVERIFY(log.lines.size() > 2);
        QCOMPARE(log.lines.filter("item "), log.lines);
    }

    void everything_is_announced_again_when_it_is_lost() {
        show();
        notifier_log_t log(db.get(), feed.get());
        feed->show_again();
        take_all();
        QCOMPARE(log.lines, QStringList({"element e-0", "element e-1", "element e-2", "element e-3",
                                         "element e-4"}));
    }

    void a_removed_user_is_announced_without_the_elements() {
        show();
        QVERIFY(writer->write({"DELETE FROM users WHERE id = 'u-bob'"}));
        notifier_log_t log(db.get(), feed.get());
        QSignalSpy hidden(feed.get(), &change_feed_t::states_hidden);
        feed->check();
        take_all();
        QCOMPARE(log.lines, QStringList({"users_changed", "user u-bob"}));
        QCOMPARE(hidden.first().first().value<QList<shown_state_t>>().size(), 5);
    }

    void an_element_that_changes_with_the_removal_is_announced() {
        show();
        QVERIFY(writer->write({"DELETE FROM users WHERE id = 'u-bob'",
                               "UPDATE elements SET name = 'other' WHERE id = 'e-2'",
                               "UPDATE permissions SET bits = 1 WHERE element = 'e-3'"}));
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        take_all();
        QCOMPARE(log.lines, QStringList({"users_changed", "user u-bob", "element e-2",
                                         "element e-3", "access_changed"}));
    }

    void a_name_that_comes_again_is_let_in_behind_the_elements_that_remember_it_data() {
        QTest::addColumn<QStringList>("again");
        QTest::newRow("in a later change")
            << QStringList{"INSERT INTO users VALUES ('u-new', 'bob', 'hash')"};
        QTest::newRow("with rights")
            << QStringList{"INSERT INTO users VALUES ('u-new', 'bob', 'hash')",
                           "INSERT INTO permissions SELECT 'u-new', id, 1 FROM elements"};
        QTest::newRow("somebody renamed")
            << QStringList{"UPDATE users SET username = 'bob' WHERE id = 'u-alice'"};
    }
    void a_name_that_comes_again_is_let_in_behind_the_elements_that_remember_it() {
        QFETCH(QStringList, again);
        show();
        QVERIFY(writer->write({"DELETE FROM users WHERE id = 'u-bob'"}));
        feed->check();
        take_all();
        QVERIFY2(writer->write(again), qPrintable(writer->error));
        notifier_log_t log(db.get(), feed.get());
        QStringList held_at_elements;
        log.at_signal = [&](const QString& _line) {
            if (_line.startsWith("element ") && feed->held_back().count("bob") == 1) {
                held_at_elements += _line;
            }
        };
        feed->check();
        QVERIFY(feed->held_back().count("bob") == 1);
        take_all();
        QVERIFY(feed->held_back().empty());
        QCOMPARE(held_at_elements, QStringList({"element e-0", "element e-1", "element e-2",
                                                "element e-3", "element e-4"}));
        QCOMPARE(log.lines.last(), "users_changed");
        QVERIFY(log.lines.at(log.lines.size() - 2).startsWith("user u-"));
    }

    void a_name_that_an_import_gives_to_somebody_else_waits_for_all_elements() {
        show();
        QVERIFY(writer->write({"DELETE FROM users WHERE id = 'u-bob'",
                               "INSERT INTO users VALUES ('u-new', 'bob', 'hash')",
                               "INSERT INTO changes (tab, key) VALUES ('bulk', '')"}));
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        QVERIFY(feed->held_back().count("bob") == 1);
        take_all();
        QCOMPARE(log.lines.mid(log.lines.size() - 2), QStringList({"users", "users_changed"}));
        QVERIFY(feed->held_back().empty());
    }

 private:
    void start() {
        feed.reset();
        db = std::make_unique<database::database_t>();
        realtime = std::make_unique<realtime_writer_t>(db.get());
        gate = std::make_unique<write_gate_t>(db.get());
        connection = std::make_unique<database::store::connection_t>();
        QCOMPARE(database::store::open_database(*connection, file->path(), 0).error, QString());
        feed = std::make_unique<change_feed_t>(
            *connection, db.get(), realtime.get(), gate.get(),
            change_feed_t::options_t{.bulk_limit = 2, .portion = 2});
        announced = std::make_unique<QSignalSpy>(feed->portions(), &portions_t::announced);
        QCOMPARE(feed->load().error, QString());
    }
    void show() {
        feed->show();
        take_all();
    }
    void take() { feed->portions()->taken(); }
    void take_all() {
        while (feed->portions()->is_busy()) {
            take();
        }
    }
    void import(const database::installation::installation_t& _whole) {
        database::store::sqlite_store_t store;
        QCOMPARE(store.open(file->path()).error, QString());
        QCOMPARE(store.replace(_whole).error, QString());
    }
    QStringList known() {
        return db->getPersistent()->getData()->getElements()->getObjects().keys();
    }

    std::unique_ptr<sample::file_t> file;
    std::unique_ptr<sample::foreign_writer_t> writer;
    std::unique_ptr<database::database_t> db;
    std::unique_ptr<realtime_writer_t> realtime;
    std::unique_ptr<write_gate_t> gate;
    std::unique_ptr<database::store::connection_t> connection;
    std::unique_ptr<change_feed_t> feed;
    std::unique_ptr<QSignalSpy> announced;
};

QTEST_GUILESS_MAIN(tst_change_feed_portions)
#include "tst_change_feed_portions.moc"
