#include "live/change_feed_t.h"

#include <QSignalSpy>
#include <QTest>

#include "kit/notifier_log_t.h"
#include "kit/sample_installation.h"
#include "store/open_database.h"
#include "store/store_editor_t.h"

using namespace database::live;
using database::persistent::objects::ps_object_user_t;

/// A feed that looks when the test says so.
class tst_change_feed_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        file = std::make_unique<sample::file_t>();
        writer = std::make_unique<sample::foreign_writer_t>(file->path());
        start();
    }

    void each_kind_has_its_signal_data() {
        QTest::addColumn<QStringList>("sql");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("element") << QStringList(
                                        "UPDATE elements SET name = 'Lamp' WHERE id = "
                                        "'e-lamp'")
                                 << QStringList({"element e-lamp", "access_changed"});
        QTest::newRow("new element")
            << QStringList("INSERT INTO elements (id, type) VALUES ('e-new', 1)")
            << QStringList({"element e-new", "access_changed"});
        QTest::newRow("element gone") << QStringList("DELETE FROM elements WHERE id = 'e-night'")
                                      << QStringList({"element e-night", "access_changed"});
        QTest::newRow("item") << QStringList("UPDATE items SET value = '1' WHERE id = 'i-lamp'")
                              << QStringList("item i-lamp");
        QTest::newRow("there and back")
            << QStringList({"UPDATE items SET value = '1' WHERE id = 'i-lamp'",
                            "UPDATE items SET value = '0' WHERE id = 'i-lamp'"})
            << QStringList();
        QTest::newRow("scenario") << QStringList("UPDATE scenarios SET execution = 1")
                                  << QStringList("scenario s-night");
        QTest::newRow("thermostat")
            << QStringList("UPDATE thermostats SET id_actual = 'i-set'")
            << QStringList({"thermostat t-living", "element e-therm", "access_changed"});
        QTest::newRow("grant") << QStringList(
                                      "UPDATE permissions SET bits = 1 WHERE user = 'u-bob'")
                               << QStringList({"element e-therm", "access_changed"});
        QTest::newRow("user gone") << QStringList("DELETE FROM users WHERE id = 'u-bob'")
                                   << QStringList({"users_changed", "user u-bob", "element e-lamp",
                                                   "element e-therm", "access_changed"});
        QTest::newRow("new user with a grant")
            << QStringList({"INSERT INTO users VALUES ('u-eve', 'eve', 'hash')",
                            "INSERT INTO permissions VALUES ('u-eve', 'e-therm', 1)"})
            << QStringList({"users_changed", "user u-eve", "element e-therm", "access_changed"});
        QTest::newRow("renamed user")
            << QStringList("UPDATE users SET username = 'rob' WHERE id = 'u-bob'")
            << QStringList({"users_changed", "user u-bob", "element e-lamp", "element e-therm",
                            "access_changed"});
        QTest::newRow("password") << QStringList(
                                         "UPDATE users SET password_hash = 'x' WHERE id = 'u-bob'")
                                  << QStringList("users_changed");
        QTest::newRow("topic") << QStringList("UPDATE meta SET value = 'installation/0002'")
                               << QStringList("database");
        QTest::newRow("bulk") << QStringList("INSERT INTO changes (tab, key) VALUES ('bulk', '')")
                              << QStringList(
                                     {"users_changed", "database", "access_changed", "reloaded"});
        QTest::newRow("nothing") << QStringList("UPDATE items SET value = value") << QStringList();
    }
    void each_kind_has_its_signal() {
        QFETCH(QStringList, sql);
        notifier_log_t log(db.get(), feed.get());
        QVERIFY2(writer->write(sql), qPrintable(writer->error));
        feed->check();
        QTEST(log.lines, "expected");
    }

    void who_may_read_something_no_longer_is_told_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QStringList>("expected");
        const QStringList nobody;
        const QStringList alice("u-alice");
        QTest::newRow("grant gone")
            << "DELETE FROM permissions WHERE user = 'u-alice' AND element = 'e-night'" << alice;
        QTest::newRow("write only now") << "UPDATE permissions SET bits = 2 WHERE user = 'u-alice' "
                                           "AND element = 'e-night'"
                                        << alice;
        QTest::newRow("read only now") << "UPDATE permissions SET bits = 1 WHERE user = 'u-alice' "
                                          "AND element = 'e-night'"
                                       << nobody;
        QTest::newRow("name of an element") << "UPDATE elements SET name = 'x'" << nobody;
        QTest::newRow("password") << "UPDATE users SET password_hash = 'x' WHERE id = 'u-bob'"
                                  << nobody;
        QTest::newRow("everything") << "INSERT INTO changes (tab, key) VALUES ('bulk', '')"
                                    << QStringList{"u-alice", "u-bob"};
    }
    void who_may_read_something_no_longer_is_told() {
        QFETCH(QString, sql);
        QStringList withdrawn;
        bool told_late = false;
        connect(feed.get(), &change_feed_t::reading_withdrawn, this,
                [&withdrawn](const QStringList& _users) { withdrawn += _users; });
        notifier_log_t log(db.get(), feed.get());
        log.at_signal = [&](const QString& _line) {
            told_late = told_late || (withdrawn.isEmpty() && _line != "users_changed");
        };
        QVERIFY2(writer->write({sql}), qPrintable(writer->error));
        feed->check();
        QTEST(withdrawn, "expected");
        QVERIFY(withdrawn.isEmpty() || !told_late);
    }

    void changed_grants_are_told_data() {
        using grants_t = QList<grant_change_t>;
        QTest::addColumn<QStringList>("sql");
        QTest::addColumn<grants_t>("expected");
        QTest::newRow("changed")
            << QStringList(
                   "UPDATE permissions SET bits = 1 WHERE user = 'u-alice' AND element = "
                   "'e-night'")
            << grants_t{{"alice", "e-night", 3, 1}};
        QTest::newRow("gone")
            << QStringList("DELETE FROM permissions WHERE user = 'u-alice' AND element = 'e-night'")
            << grants_t{{"alice", "e-night", 3, 0}};
        QTest::newRow("new user") << QStringList(
                                         {"INSERT INTO users VALUES ('u-eve', 'eve', 'hash')",
                                          "INSERT INTO permissions VALUES ('u-eve', 'e-therm', 1)"})
                                  << grants_t{{"eve", "e-therm", 0, 1}};
        QTest::newRow("user gone") << QStringList("DELETE FROM users WHERE id = 'u-bob'")
                                   << grants_t{{"bob", "e-lamp", 1, 0}, {"bob", "e-therm", 2, 0}};
        QTest::newRow("element gone") << QStringList("DELETE FROM elements WHERE id = 'e-night'")
                                      << grants_t{{"alice", "e-night", 3, 0}};
        QTest::newRow("by an import")
            << QStringList({"UPDATE permissions SET bits = 1 WHERE user = 'u-alice' AND element = "
                            "'e-night'",
                            "INSERT INTO changes (tab, key) VALUES ('bulk', '')"})
            << grants_t{{"alice", "e-night", 3, 1}};
        QTest::newRow("name of an element")
            << QStringList("UPDATE elements SET name = 'x'") << grants_t{};
        QTest::newRow("password") << QStringList("UPDATE users SET password_hash = 'x'")
                                  << grants_t{};
        QTest::newRow("everything, and nothing is another")
            << QStringList("INSERT INTO changes (tab, key) VALUES ('bulk', '')") << grants_t{};
    }
    void changed_grants_are_told() {
        QFETCH(QStringList, sql);
        QFETCH(QList<grant_change_t>, expected);
        QList<grant_change_t> told;
        connect(feed.get(), &change_feed_t::grants_changed, this,
                [&told](const QList<grant_change_t>& _changes) { told += _changes; });
        QVERIFY2(writer->write(sql), qPrintable(writer->error));
        feed->check();
        QVERIFY(told == expected);
    }

    void all_objects_are_new_before_the_first_signal() {
        notifier_log_t log(db.get(), feed.get());
        QStringList wrong;
        log.at_signal = [this, &wrong](const QString& _line) {
            const bool fresh = name_of("e-lamp") == "Lamp" && value_of("i-lamp") == "1" &&
                               bits("e-therm", "u-bob") == 0 &&
                               user_ids() == QStringList("u-alice");
            wrong += fresh ? QStringList() : QStringList(_line);
        };
        QVERIFY(writer->write({"UPDATE items SET value = '1' WHERE id = 'i-lamp'",
                               "DELETE FROM users WHERE id = 'u-bob'",
                               "UPDATE elements SET name = 'Lamp' WHERE id = 'e-lamp'"}));
        feed->check();
        QCOMPARE(log.lines.size(), 6);
        QCOMPARE(wrong, QStringList());
    }

    void a_batch_of_several_commits_is_one_announcement_each() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"UPDATE elements SET name = 'a' WHERE id = 'e-lamp'"}));
        QVERIFY(writer->write({"UPDATE elements SET name = 'b' WHERE id = 'e-lamp'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList({"element e-lamp", "access_changed"}));
        QCOMPARE(name_of("e-lamp"), "b");
        feed->check();
        QCOMPARE(log.lines.size(), 2);
    }

    void elements_are_announced_one_by_one_however_many() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"UPDATE elements SET name = 'x'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList({"element e-lamp", "element e-night", "element e-therm",
                                         "access_changed"}));
        QCOMPARE(name_of("e-therm"), "x");
    }

    void more_items_than_the_limit_are_one_signal() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"UPDATE items SET value = 'x'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList("items"));
        QCOMPARE(value_of("i-temp"), "x");
    }

    void a_stream_of_bulk_signals_leaves_receivers_time_to_read() {
        notifier_log_t log(db.get(), feed.get());
        QList<qint64> times;
        QElapsedTimer clock;
        clock.start();
        log.at_signal = [&times, &clock](const QString& _line) {
            if (_line == "items") {
                times += clock.elapsed();
            }
        };
        int value = 0;
        QTRY_VERIFY_WITH_TIMEOUT(
            [&]() {
                const QString sql = QStringLiteral("UPDATE items SET value = '%1'").arg(++value);
                const bool written = writer->write({sql});
                feed->check();
                return !written || times.size() >= 3;
            }(),
            20'000);
        QCOMPARE(times.size(), 3);
        QVERIFY(times[1] - times[0] >= 250 && times[2] - times[1] >= 250);
        QVERIFY(value > 3);
        QVERIFY(log.lines.filter("item ").isEmpty());
    }

    void what_is_hidden_is_told_behind_the_notifiers_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QStringList>("expected");
        const QStringList all_of_bob{"bob e-lamp"};
        QTest::newRow("grant gone")
            << "DELETE FROM permissions WHERE user = 'u-alice' AND element = 'e-night'"
            << QStringList{"alice e-night"};
        QTest::newRow("write only now") << "UPDATE permissions SET bits = 2 WHERE user = 'u-alice' "
                                           "AND element = 'e-night'"
                                        << QStringList{"alice e-night"};
        QTest::newRow("user gone") << "DELETE FROM users WHERE id = 'u-bob'" << all_of_bob;
        QTest::newRow("user renamed")
            << "UPDATE users SET username = 'rob' WHERE id = 'u-bob'" << all_of_bob;
        QTest::newRow("element gone")
            << "DELETE FROM elements WHERE id = 'e-night'" << QStringList{"alice e-night"};
        QTest::newRow("password") << "UPDATE users SET password_hash = 'x' WHERE id = 'u-bob'"
                                  << QStringList();
        QTest::newRow("name of an element") << "UPDATE elements SET name = 'x'" << QStringList();
        QTest::newRow("everything again")
            << "INSERT INTO changes (tab, key) VALUES ('bulk', '')" << QStringList();
    }
    void what_is_hidden_is_told_behind_the_notifiers() {
        QFETCH(QString, sql);
        QStringList hidden;
        notifier_log_t log(db.get(), feed.get());
        qsizetype lines_before = -1;
        connect(feed.get(), &change_feed_t::states_hidden, this,
                [&](const QList<database::live::shown_state_t>& _states) {
                    lines_before = log.lines.size();
                    for (const auto& state : _states) {
                        hidden += state.username + ' ' + state.element;
                    }
                });
        QVERIFY2(writer->write({sql}), qPrintable(writer->error));
        feed->check();
        QTEST(hidden, "expected");
        // Only access_changed comes behind it.
        QVERIFY(hidden.isEmpty() || lines_before == log.lines.size() - 1);
    }

    void an_import_hides_what_it_lacks() {
        auto other = sample::installation();
        other.elements.remove("e-night");
        other.permissions["u-alice"].remove("e-night");
        other.users.remove("u-bob");
        other.permissions.remove("u-bob");
        import(other);
        QStringList hidden;
        connect(feed.get(), &change_feed_t::states_hidden, this,
                [&](const QList<database::live::shown_state_t>& _states) {
                    for (const auto& state : _states) {
                        hidden += state.username + ' ' + state.element;
                    }
                });
        feed->check();
        QCOMPARE(hidden, QStringList({"alice e-night", "bob e-lamp"}));
    }

    void as_many_as_the_limit_are_announced_one_by_one() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"UPDATE elements SET name = 'x' WHERE id <> 'e-night'",
                               "UPDATE items SET value = 'x' WHERE id IN ('i-lamp', 'i-dim')"}));
        feed->check();
        QCOMPARE(log.lines, QStringList({"element e-lamp", "element e-therm", "item i-dim",
                                         "item i-lamp", "access_changed"}));
    }

    void a_removed_user_is_announced_before_its_elements() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"DELETE FROM users WHERE id = 'u-alice'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList({"users_changed", "user u-alice", "element e-lamp",
                                         "element e-night", "element e-therm", "access_changed"}));
        QCOMPARE(bits("e-therm", "u-alice"), 0);
    }

    void a_large_import_while_running_is_read_whole() {
        auto other = sample::installation();
        other.elements.remove("e-night");
        other.permissions["u-alice"].remove("e-night");
        other.elements["e-lamp"].name = "Lamp";
        for (int i = 0; i < database::store::sqlite_store_t::told_singly; ++i) {
            other.elements[QStringLiteral("e-%1").arg(i)].type = 1;
        }
        import(other);
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        QCOMPARE(log.lines,
                 QStringList({"users_changed", "database", "access_changed", "reloaded"}));
        QCOMPARE(name_of("e-lamp"), "Lamp");
        QVERIFY(!db->getPersistent()->getData()->getElements()->getObjects().contains("e-night"));
    }

    void an_import_is_announced_as_what_it_changes_data() {
        using change_t = std::function<void(database::installation::installation_t*)>;
        QTest::addColumn<change_t>("change");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* _title, const change_t& _change,
                            const QStringList& _expected) {
            QTest::newRow(_title) << _change << _expected;
        };
        row("nothing", [](auto*) {}, {});
        row("name", [](auto* _w) { _w->elements["e-lamp"].name = "Lamp"; },
            {"element e-lamp", "access_changed"});
        row("grant", [](auto* _w) { _w->permissions["u-bob"].remove("e-lamp"); },
            {"element e-lamp", "access_changed"});
        row("value", [](auto* _w) { _w->items["i-lamp"].value = "1"; }, {"item i-lamp"});
        row("limits", [](auto* _w) { _w->items["i-lamp"].limits.writable = false; }, {});
        row("thermostat", [](auto* _w) { _w->thermostats["t-living"].ids["setpoint"] = "i-dim"; },
            {"thermostat t-living", "element e-therm", "access_changed"});
        row("password", [](auto* _w) { _w->users["u-bob"].password_hash = "other"; },
            {"users_changed"});
        row("topic", [](auto* _w) { _w->topic = "home"; }, {"database"});
    }
    void an_import_is_announced_as_what_it_changes() {
        QFETCH(std::function<void(database::installation::installation_t*)>, change);
        auto other = sample::installation();
        change(&other);
        import(other);
        notifier_log_t log(db.get(), feed.get());
        feed->check();
        QTEST(log.lines, "expected");
    }

    void other_limits_count_at_once_and_are_not_announced() {
        realtime->write_item("i-win", "7");
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"UPDATE items SET writable = 0 WHERE id = 'i-win'",
                               "UPDATE items SET min = 0, max = 1 WHERE id = 'i-lamp'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList());
        QCOMPARE(gate->refusal("i-win", "1"), "it is not writable");
        QCOMPARE(gate->refusal("i-lamp", "2"), "it is above 1");
        QCOMPARE(value_of("i-win"), "7");
    }

    void limits_that_nobody_can_tell_let_nothing_through_data() {
        QTest::addColumn<QString>("limits");
        QTest::newRow("min") << "min = 'low'";
        QTest::newRow("range") << "min = 1, max = 0";
        QTest::newRow("step") << "step = -1";
        QTest::newRow("writable") << "writable = 'yes'";
    }
    void limits_that_nobody_can_tell_let_nothing_through() {
        QFETCH(QString, limits);
        QSignalSpy told(feed.get(), &change_feed_t::failed);
        QVERIFY(writer->write({"PRAGMA ignore_check_constraints = ON",
                               "UPDATE items SET " + limits + " WHERE id = 'i-lamp'"}));
        feed->check();
        QCOMPARE(gate->refusal("i-lamp", "1"), "it is not writable");
        QCOMPARE(told.count(), 1);
    }

    void rows_are_pruned_once_read() {
        QVERIFY(writer->write({"UPDATE elements SET name = 'x'"}));
        QVERIFY(writer->read("SELECT count(*) FROM changes").toInt() > 0);
        feed->check();
        QCOMPARE(writer->read("SELECT count(*) FROM changes"), "0");
    }

    void sequence_numbers_outgrow_32_bits_data() {
        QTest::addColumn<qint64>("last_used");
        QTest::newRow("31 bits") << (qint64(1) << 31) - 2;
        QTest::newRow("32 bits") << (qint64(1) << 32) - 2;
        QTest::newRow("what a double holds") << (qint64(1) << 53) - 2;
    }
    void sequence_numbers_outgrow_32_bits() {
        QFETCH(const qint64, last_used);
        feed.reset();
        QVERIFY(writer->write(
            {QStringLiteral("INSERT INTO changes VALUES (%1, 'bulk', '')").arg(last_used)}));
        start();
        notifier_log_t log(db.get(), feed.get());
        for (int value = 1; value <= 4; ++value) {
            const QString key = value % 2 == 0 ? QStringLiteral("i-lamp") : QStringLiteral("i-dim");
            log.lines.clear();
            QVERIFY(writer->write({QStringLiteral("UPDATE items SET value = 'v%1' WHERE id = '%2'")
                                       .arg(QString::number(value), key)}));
            QCOMPARE(writer->read("SELECT max(sequence) FROM changes").toLongLong(),
                     last_used + value);
            feed->check();
            QCOMPARE(log.lines, QStringList("item " + key));
            QCOMPARE(writer->read("SELECT count(*) FROM changes"), "0");
        }
    }

    void a_rolled_back_write_is_not_seen() {
        notifier_log_t log(db.get(), feed.get());
        database::store::connection_t other;
        using access_t = database::store::connection_t::access_t;
        QVERIFY(other.open(file->path(), access_t::read_write, 0).is_ok());
        QVERIFY(other.run("BEGIN IMMEDIATE").is_ok());
        QVERIFY(other.run("UPDATE elements SET name = 'x'").is_ok());
        feed->check();
        QVERIFY(other.run("ROLLBACK").is_ok());
        feed->check();
        QCOMPARE(log.lines, QStringList());
        QCOMPARE(writer->read("SELECT count(*) FROM changes"), "0");
    }

    void what_was_written_while_stopped_is_there_after_the_start() {
        feed.reset();
        QVERIFY(writer->write({"UPDATE elements SET name = 'Lamp' WHERE id = 'e-lamp'"}));
        start();
        notifier_log_t log(db.get(), feed.get());
        QCOMPARE(name_of("e-lamp"), "Lamp");
        feed->check();
        QCOMPARE(log.lines, QStringList());
        QVERIFY(writer->write({"UPDATE items SET value = '1' WHERE id = 'i-lamp'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList("item i-lamp"));
    }

    void odd_rows_are_shown_to_nobody_and_told_once() {
        QSignalSpy told(feed.get(), &change_feed_t::failed);
        notifier_log_t log(db.get(), feed.get());
        // As a shell can write them, if it is told to.
        QVERIFY(writer->write(
            {"PRAGMA ignore_check_constraints = ON",
             "INSERT INTO elements (id, type) VALUES ('a/#', 1), (x'652d62', 1), ('e-new', 1)",
             "INSERT INTO items (id, value) VALUES ('i b', '1')",
             "INSERT INTO scenarios (id, execution) VALUES ('', 1)",
             "INSERT INTO thermostats (id) VALUES ('request')",
             "INSERT INTO users VALUES ('u-eve', '+', 'hash'), ('u x', 'eve', 'hash')",
             "INSERT INTO permissions VALUES ('u-eve', 'e-lamp', 1), ('u-bob', 'a/#', 1)",
             "UPDATE elements SET name = 'Kitchen' || char(10) || 'lamp' WHERE id = 'e-lamp'"}));
        feed->check();
        QCOMPARE(log.lines.mid(told.count()),
                 QStringList({"users_changed", "user u-eve", "element e-b", "element e-lamp",
                              "element e-new", "access_changed"}));
        QCOMPARE(told.count(), 7);
        QCOMPARE(data()->getElements()->getObjects().keys(),
                 QStringList({"e-lamp", "e-new", "e-night", "e-therm"}));
        QCOMPARE(name_of("e-lamp"), "Kitchen lamp");
        QCOMPARE(data()->getItems()->getObjects().size(), 5);
        QCOMPARE(data()->getScenary()->getObjects().size(), 1);
        QCOMPARE(data()->getThermo()->getObjects().size(), 1);
        QCOMPARE(user_ids(), QStringList({"u-alice", "u-bob"}));

        // A name that is no text is found when everything is read.
        QVERIFY(writer->write({"INSERT INTO changes (tab, key) VALUES ('bulk', '')"}));
        feed->check();
        QCOMPARE(told.count(), 8);
        QVERIFY(writer->write({"UPDATE elements SET type = 2"}));
        feed->check();
        QCOMPARE(told.count(), 8);
        QCOMPARE(data()->getElements()->getObjects().size(), 4);
    }

    void a_failed_look_is_told_and_tried_again() {
        notifier_log_t log(db.get(), feed.get());
        QVERIFY(writer->write({"ALTER TABLE elements RENAME COLUMN name TO title",
                               "UPDATE elements SET title = 'Lamp' WHERE id = 'e-lamp'"}));
        feed->check();
        QCOMPARE(log.lines, QStringList("failed"));
        feed->check();
        QCOMPARE(log.lines, QStringList("failed"));
        QCOMPARE(name_of("e-lamp"), "Kitchen lamp");
        // Mended without a foreign commit: the feed must remember by itself that it missed one.
        QVERIFY(connection->run("ALTER TABLE elements RENAME COLUMN title TO name").is_ok());
        feed->check();
        QCOMPARE(log.lines, QStringList({"failed", "element e-lamp", "access_changed"}));
        QCOMPARE(name_of("e-lamp"), "Lamp");
    }

 private:
    const database::persistent::ps_data_t* data() { return db->getPersistent()->getData(); }
    void start() {
        feed.reset();
        db = std::make_unique<database::database_t>();
        realtime = std::make_unique<realtime_writer_t>(db.get());
        gate = std::make_unique<write_gate_t>(db.get());
        connection = std::make_unique<database::store::connection_t>();
        QCOMPARE(database::store::open_database(*connection, file->path(), 0).error, QString());
        feed = std::make_unique<change_feed_t>(*connection, db.get(), realtime.get(), gate.get(),
                                               change_feed_t::options_t{.bulk_limit = 2});
        QCOMPARE(feed->load().error, QString());
    }
    void import(const database::installation::installation_t& _whole) {
        database::store::sqlite_store_t store;
        QCOMPARE(store.open(file->path()).error, QString());
        QCOMPARE(store.replace(_whole).error, QString());
    }
    QString name_of(const QString& _id) {
        return db->getPersistent()->getData()->getElements()->list(_id)->getName();
    }
    QString value_of(const QString& _id) {
        return db->getRealtime()->getItems()->list(_id)->getValue();
    }
    QStringList user_ids() { return db->getPersistent()->getData()->getUsers()->getUsersAPI(true); }
    int bits(const QString& _element, const QString& _user) {
        return db->getPersistent()->getData()->check_permission_element_by_userid(
            _element, _user, ps_object_user_t::PermissionFlag::element);
    }

    std::unique_ptr<sample::file_t> file;
    std::unique_ptr<sample::foreign_writer_t> writer;
    std::unique_ptr<database::database_t> db;
    std::unique_ptr<realtime_writer_t> realtime;
    std::unique_ptr<write_gate_t> gate;
    std::unique_ptr<database::store::connection_t> connection;
    std::unique_ptr<change_feed_t> feed;
};

QTEST_GUILESS_MAIN(tst_change_feed_t)
#include "tst_change_feed_t.moc"
