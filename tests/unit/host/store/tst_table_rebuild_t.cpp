#include "store/table_rebuild_t.h"

#include <QTest>

#include "kit/old_home_t.h"

using namespace database::store;

/// What becomes of the rows when a database of layout 1 is opened.
class tst_table_rebuild_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_row_against_the_rule_is_set_aside_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QString>("reason");
        QTest::addColumn<QString>("row");
        const auto row = [](const char* _sql, const QString& _row, const char* _reason) {
            QTest::newRow(_sql) << QString(_sql) << QString(_reason) << _row;
        };
        const char* const id =
            "id must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request";
        row("INSERT INTO elements (id, type) VALUES (hex(zeroblob(41)), 1)",
            "elements/" + QString(80, u'0') + QStringLiteral("…"), id);
        row("INSERT INTO elements (id, type) VALUES ('a' || char(0) || '/#', 1)", "elements/a?/#",
            id);
        row("INSERT INTO elements (id, type) VALUES (x'61', 1)", "elements/a", id);
        row("INSERT INTO items VALUES ('my-request', '')", "items/my-request", id);
        row("INSERT INTO scenarios VALUES (x'', 0)", "scenarios/", id);
        row("INSERT INTO thermostats (id) VALUES ('request')", "thermostats/request", id);
        row("INSERT INTO users VALUES ('request', 'eve', 'hash')", "users/request", id);
        row("INSERT INTO users VALUES ('u-eve', hex(zeroblob(41)), 'hash')", "users/u-eve",
            "username must be 1 to 64 of the characters 0-9 a-z A-Z . _ -, without request");
        row("INSERT INTO users VALUES ('u-eve', 'eve', x'00')", "users/u-eve",
            "password_hash must be text without NUL");
        row("INSERT INTO functions VALUES ('e-lamp', '', NULL)", "functions/e-lamp/",
            "name must be text without NUL, and not empty");
        row("INSERT INTO functions VALUES ('e-lamp', x'61', NULL)", "functions/e-lamp/a",
            "name must be text without NUL, and not empty");
        row("INSERT INTO thermostat_ids VALUES ('t-living', '', NULL)", "thermostat_ids/t-living/",
            "key must be text without NUL, and not empty");
        row("UPDATE meta SET value = 'home/#'", "meta/topic",
            "topic: levels of 0-9 a-z A-Z . _ - joined by /, not api first, without request");
        row("INSERT INTO functions VALUES ('e-x', 'execute', NULL)", "functions/e-x/execute",
            "its element \"e-x\" is not among the elements");
        row("INSERT INTO permissions VALUES ('u-x', 'e-lamp', 1)", "permissions/u-x/e-lamp",
            "its user \"u-x\" is not among the users");
        row("UPDATE elements SET scenario = 's-x' WHERE id = 'e-night'", "elements/e-night",
            "its scenario \"s-x\" is not among the scenarios");
        row("UPDATE functions SET item = x'61' WHERE element = 'e-night'",
            "functions/e-night/execute", "its item \"a\" is not among the items");
    }
    void a_row_against_the_rule_is_set_aside() {
        QFETCH(QString, sql);
        QFETCH(QString, reason);
        QFETCH(QString, row);
        const sample::old_home_t home({sql});
        QCOMPARE(
            home.migrate().mid(1),
            QStringList(
                QStringLiteral("Database %1: %2 is set aside: %3.").arg(home.path, row, reason)));
        QCOMPARE(home.read("SELECT count(*) || ' ' || tab || ' ' || reason FROM set_aside"),
                 "1 " + row.section('/', 0, 0) + " " + reason);
        QCOMPARE(home.read("SELECT count(*) FROM pragma_foreign_key_check"), "0");
    }

    void what_is_set_aside_is_whole() {
        const sample::old_home_t home(
            {"INSERT INTO users VALUES ('u' || char(0), x'ff00', 'secret-hash')"});
        const QStringList notes = home.migrate();
        QVERIFY2(!notes.join(' ').contains("secret"), qPrintable(notes.join(' ')));
        QCOMPARE(home.read("SELECT content FROM set_aside"),
                 R"({"id":"u\u0000","password_hash":"secret-hash","username":{"bytes":"ff00"}})");
    }

    void what_hangs_on_a_row_goes_with_it() {
        const sample::old_home_t home(
            {"PRAGMA foreign_keys = ON",
             "UPDATE elements SET id = id || char(0) WHERE id = 'e-lamp'",
             "UPDATE items SET id = id || char(0) WHERE id = 'i-dim'",
             "UPDATE users SET username = username || char(0) WHERE id = 'u-bob'"});
        // After the copy: the three rows, three functions and two grants of the lamp, a function of
        // the item, and the user's other grant.
        QCOMPARE(home.migrate().size(), 1 + 3 + 3 + 2 + 1 + 1);
        const auto whole = home.installation();
        QCOMPARE(whole.elements.keys(), QStringList({"e-night", "e-therm"}));
        QVERIFY(whole.elements["e-night"].functions["execute"].isNull());
        QCOMPARE(whole.users.keys(), QStringList("u-alice"));
        QCOMPARE(whole.permissions.keys(), QStringList("u-alice"));
        QCOMPARE(whole.permissions["u-alice"].keys(), QStringList({"e-night", "e-therm"}));
        QCOMPARE(
            home.read("SELECT group_concat(tab) FROM (SELECT tab FROM set_aside ORDER BY tab)"),
            "elements,functions,functions,functions,functions,items,permissions,permissions,"
            "permissions,users");
    }

    void what_refers_to_nothing_on_purpose_stays() {
        // Without one scenario and thermostat, not even an id to compare with is there.
        const sample::old_home_t home({"UPDATE elements SET scenario = NULL, thermostat = NULL",
                                       "DELETE FROM scenarios", "DELETE FROM thermostats"});
        QCOMPARE(home.migrate().size(), 1);
        QCOMPARE(home.installation().elements.size(), 3);
        QCOMPARE(home.read("SELECT count(*) FROM set_aside"), "0");
    }

    void many_rows_are_told_in_short() {
        const sample::old_home_t home(
            {"WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT 505) "
             "INSERT INTO items SELECT 'request-' || i, '' FROM n"});
        const QStringList notes = home.migrate();
        QCOMPARE(notes.size(), 1 + set_aside_t::told + 1);
        QCOMPARE(notes.last(),
                 QStringLiteral("Database %1: 5 more rows are set aside, all are in its table "
                                "set_aside.")
                     .arg(home.path));
        QCOMPARE(home.read("SELECT count(*) FROM set_aside"), "505");
    }

    void a_column_that_is_new_gets_its_default() {
        // As if the former layout had no flags: what the next layout adds comes in the same way.
        const sample::old_home_t home(
            {"DROP TRIGGER elements_updated", "ALTER TABLE elements DROP COLUMN flags"});
        QCOMPARE(home.migrate().size(), 1);
        auto expected = sample::installation();
        for (auto& element : expected.elements) {
            element.flags = 0;
        }
        QVERIFY(home.installation() == expected);
    }

    void a_column_that_is_gone_takes_nothing_along() {
        const sample::old_home_t home({"ALTER TABLE items ADD COLUMN unit TEXT"});
        QCOMPARE(home.migrate().size(), 1);
        QVERIFY(home.installation() == sample::installation());
        QCOMPARE(sample::foreign_writer_t(home.copy).read(
                     "SELECT count(*) FROM pragma_table_info('items') WHERE name = 'unit'"),
                 "1");
    }
};

QTEST_GUILESS_MAIN(tst_table_rebuild_t)
#include "tst_table_rebuild_t.moc"
