#include "store/sqlite_store_t.h"

#include <QTest>
#include <functional>
#include <limits>

#include "kit/sample_installation.h"

using namespace database::store;
using database::installation::installation_t;

class tst_sqlite_store_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void what_was_written_is_read_back() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        const installation_t whole = store.read().value;
        QCOMPARE(whole.elements, sample::installation().elements);
        QCOMPARE(whole.permissions, sample::installation().permissions);
        QVERIFY(whole == sample::installation());
        QVERIFY(whole.elements["e-lamp"].functions["spare"].isNull());
    }

    void bus_data_is_read_back_and_what_a_shell_broke_is_left_out() {
        installation_t written = sample::installation();
        const bus::bus_data_t lamp{
            .dpt = "1.001", .write = "1/1/1", .status = {"1/1/2"}, .read = true};
        const bus::bus_data_t scene{.dpt = "17.001", .write = "0/7/1", .status = {}, .scene = 3};
        written.item_buses = {{"i-lamp", lamp}, {"i-dim", lamp}};
        written.scenario_buses = {{"s-night", scene}};
        const sample::file_t file(written);
        QCOMPARE(file.error, QString());
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        QVERIFY(store.read().value == written);
        sample::foreign_writer_t shell(file.path());
        QVERIFY(
            shell.write({"UPDATE items SET knx = '{\"dpt\": \"9\", \"write\": \"1/9/1\"}' "
                         "WHERE id = 'i-dim'",
                         "UPDATE scenarios SET knx = 'x' WHERE id = 's-night'"}));
        const installation_t whole = store.read().value;
        QCOMPARE(whole.item_buses.keys(), QStringList({"i-lamp"}));
        QCOMPARE(whole.scenario_buses.keys(), QStringList());
        QCOMPARE(whole.items, written.items);
        const QStringList notes = store.take_notes();
        QCOMPARE(notes.size(), 2);
        QVERIFY2(notes[0].contains("items/i-dim/knx/write is left out: must be a group address"),
                 qPrintable(notes[0]));
        QVERIFY2(notes[1].contains("scenarios/s-night/knx is left out: must be an object"),
                 qPrintable(notes[1]));
    }

    void flags_keep_their_sign_and_their_top_bit() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        installation_t written = sample::installation();
        const QMap<QString, qint32> flags{{"e-least", std::numeric_limits<qint32>::min()},
                                          {"e-minus", -1},
                                          {"e-most", std::numeric_limits<qint32>::max()}};
        for (auto it = flags.cbegin(); it != flags.cend(); ++it) {
            written.elements[it.key()] = {"Flags", 1, it.value(), {}, {}, {}};
        }
        QVERIFY(store.replace(written).is_ok());
        const installation_t whole = store.read().value;
        for (auto it = flags.cbegin(); it != flags.cend(); ++it) {
            QCOMPARE(whole.elements.value(it.key()).flags, it.value());
        }
    }

    void a_replacement_leaves_nothing_of_the_old() {
        const sample::file_t file;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        installation_t small;
        small.topic = "installation/0002";
        small.items = {{"i-only", {"7", {false, -1, 1.5, 0.1}}}};
        QVERIFY(store.replace(small).is_ok());
        const installation_t whole = store.read().value;
        QVERIFY(whole == small);
    }

    void an_equal_installation_touches_nothing() {
        const sample::file_t file;
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write({"DELETE FROM changes",
                             "UPDATE meta SET value = 'then' WHERE "
                             "key = 'imported'"}));
        QCOMPARE(replaced(file, sample::installation()), QString());
        QCOMPARE(other.read("SELECT count(*) FROM changes"), "0");
        QCOMPARE(other.read("SELECT value FROM meta WHERE key = 'imported'"), "then");
    }

    void a_replacement_touches_what_differs_data() {
        using change_t = std::function<void(installation_t*)>;
        QTest::addColumn<change_t>("change");
        QTest::addColumn<QStringList>("rows");
        const auto row = [](const char* _title, const change_t& _change, const QStringList& _rows) {
            QTest::newRow(_title) << _change << _rows;
        };
        row("name", [](auto* _w) { _w->elements["e-lamp"].name = "Lamp"; }, {"elements e-lamp"});
        row("new element", [](auto* _w) { _w->elements["e-new"].type = 1; }, {"elements e-new"});
        row("value", [](auto* _w) { _w->items["i-lamp"].value = "1"; }, {"items i-lamp"});
        row("limits", [](auto* _w) { _w->items["i-lamp"].limits.max = 1; }, {"limits i-lamp"});
        row("function", [](auto* _w) { _w->elements["e-lamp"].functions["spare"] = "i-dim"; },
            {"elements e-lamp"});
        row("no function", [](auto* _w) { _w->elements["e-lamp"].functions.remove("spare"); },
            {"elements e-lamp"});
        row("scenario", [](auto* _w) { _w->scenarios["s-night"] = true; }, {"scenarios s-night"});
        row("thermostat", [](auto* _w) { _w->thermostats["t-living"].id_actual.clear(); },
            {"thermostats t-living"});
        row("key", [](auto* _w) { _w->thermostats["t-living"].ids["mode"] = "i-dim"; },
            {"thermostats t-living"});
        row("more rights", [](auto* _w) { _w->permissions["u-bob"]["e-lamp"] = 3; },
            {"elements e-lamp"});
        row("no right", [](auto* _w) { _w->permissions["u-bob"].remove("e-lamp"); },
            {"elements e-lamp"});
        row("password", [](auto* _w) { _w->users["u-bob"].password_hash = "other"; },
            {"passwords u-bob"});
        row("topic", [](auto* _w) { _w->topic = "home"; }, {"meta topic"});
        row("item of an element",
            [](auto* _w) {
                _w->items.remove("i-lamp");
                _w->items["i-new"].value = "0";
                _w->elements["e-lamp"].functions["execute"] = "i-new";
            },
            {"elements e-lamp", "items i-lamp", "items i-new"});
        row("user renamed", [](auto* _w) { _w->users["u-bob"].username = "rob"; },
            {"elements e-lamp", "elements e-therm", "users u-bob"});
        row("names exchanged",
            [](auto* _w) { std::swap(_w->users["u-alice"].username, _w->users["u-bob"].username); },
            {"elements e-lamp", "elements e-night", "elements e-therm", "users u-alice",
             "users u-bob"});
        row("name goes to a new user",
            [](auto* _w) {
                _w->users["u-new"] = _w->users.take("u-bob");
                _w->permissions.remove("u-bob");
            },
            {"elements e-lamp", "elements e-therm", "users u-bob", "users u-new"});
    }
    void a_replacement_touches_what_differs() {
        QFETCH(std::function<void(installation_t*)>, change);
        const sample::file_t file;
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write({"DELETE FROM changes"}));
        installation_t whole = sample::installation();
        change(&whole);
        QCOMPARE(replaced(file, whole), QString());
        QTEST(other
                  .read("SELECT group_concat(line) FROM (SELECT tab || ' ' || key AS line FROM "
                        "changes GROUP BY line ORDER BY line)")
                  .split(','),
              "rows");
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        QVERIFY(store.read().value == whole);
    }

    void odd_rows_are_gone_after_a_replacement() {
        const sample::file_t file;
        sample::foreign_writer_t other(file.path());
        QVERIFY(
            other.write({"PRAGMA ignore_check_constraints = ON",
                         "INSERT INTO elements (id, type) VALUES ('a/#', 1), (x'652d6c616d70', 1)",
                         "INSERT INTO users VALUES (x'752d626f62', 'eve', 'hash')",
                         "UPDATE elements SET name = x'41' WHERE id = 'e-lamp'",
                         "UPDATE items SET value = x'30', min = 'low' WHERE id = 'i-lamp'"}));
        QCOMPARE(replaced(file, sample::installation()), QString());
        QCOMPARE(other.read("SELECT count(*) FROM elements"), "3");
        QCOMPARE(other.read("SELECT count(*) FROM users"), "2");
        QCOMPARE(other.read("SELECT group_concat(typeof(value) || typeof(min)) FROM items WHERE "
                            "id = 'i-lamp'"),
                 "textnull");
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        QVERIFY(store.read().value == sample::installation());
    }

    void many_elements_are_one_bulk_row_after_the_rows_of_others_data() {
        QTest::addColumn<int>("added");
        QTest::addColumn<QString>("rows");
        QTest::newRow("at the limit")
            << sqlite_store_t::told_singly - 1
            << "elements,items " + QString::number(sqlite_store_t::told_singly + 1);
        QTest::newRow("above") << sqlite_store_t::told_singly << "bulk,items 2";
    }
    void many_elements_are_one_bulk_row_after_the_rows_of_others() {
        QFETCH(int, added);
        const sample::file_t file;
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write(
            {"DELETE FROM changes", "UPDATE items SET value = '1' WHERE id = 'i-lamp'"}));
        installation_t whole = sample::installation();
        whole.items["i-lamp"].value = "1";
        whole.elements["e-lamp"].name = "Lamp";
        for (int i = 0; i < added; ++i) {
            whole.elements[QStringLiteral("e-%1").arg(i)].type = 1;
        }
        QCOMPARE(replaced(file, whole), QString());
        QTEST(other.read("SELECT group_concat(DISTINCT tab) || ' ' || count(*) FROM (SELECT * FROM "
                         "changes ORDER BY tab)"),
              "rows");
    }

    void a_replacement_that_breaks_off_leaves_everything_as_it_was() {
        const sample::file_t file;
        sample::foreign_writer_t other(file.path());
        QVERIFY(other.write({"DELETE FROM changes"}));
        installation_t broken = sample::installation();
        broken.elements["e-lamp"].name = "Lamp";
        broken.permissions["u-nobody"]["e-lamp"] = 1;
        sqlite_store_t store;
        QVERIFY(store.open(file.path()).is_ok());
        const base::result_t result = store.replace(broken);
        QVERIFY2(result.error.contains("FOREIGN KEY"), qPrintable(result.error));
        QVERIFY(store.read().value == sample::installation());
        QCOMPARE(other.read("SELECT count(*) FROM changes"), "0");
        // And the next one works.
        broken.permissions.remove("u-nobody");
        QCOMPARE(store.replace(broken).error, QString());
        QVERIFY(store.read().value == broken);
    }

    void a_failed_read_is_told() {
        sqlite_store_t closed;
        QVERIFY(!closed.read().is_ok());
    }

 private:
    static QString replaced(const sample::file_t& _file, const installation_t& _whole) {
        sqlite_store_t store;
        const QString error = store.open(_file.path()).error;
        return error.isEmpty() ? store.replace(_whole).error : error;
    }
};

QTEST_GUILESS_MAIN(tst_sqlite_store_t)
#include "tst_sqlite_store_t.moc"
