#include "store/schema.h"

#include <QTest>

#include "kit/sample_installation.h"
#include "store/open_database.h"

using namespace database::store;

/// Reports of the change table, without doubles, in first order.
static QStringList reports(sample::foreign_writer_t* _writer) {
    return _writer
        ->read(
            "SELECT group_concat(line) FROM (SELECT tab || ' ' || key AS line FROM changes "
            "GROUP BY line ORDER BY line)")
        .split(',', Qt::SkipEmptyParts);
}

class tst_schema : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_write_reports_what_it_affects_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* _sql, const QStringList& _expected) {
            QTest::newRow(_sql) << QString(_sql) << _expected;
        };
        row("UPDATE items SET value = '1' WHERE id = 'i-lamp'", {"items i-lamp"});
        row("UPDATE items SET value = value", {});
        row("INSERT INTO items VALUES ('i-new', '1')", {"items i-new"});
        row("DELETE FROM items WHERE id = 'i-lamp'", {"elements e-lamp", "items i-lamp"});
        row("DELETE FROM items WHERE id = 'i-temp'", {"items i-temp", "thermostats t-living"});
        row("DELETE FROM items WHERE id = 'i-set'", {"items i-set", "thermostats t-living"});
        row("UPDATE scenarios SET execution = 1", {"scenarios s-night"});
        row("UPDATE scenarios SET execution = 0", {});
        row("DELETE FROM scenarios", {"elements e-night", "scenarios s-night"});
        row("UPDATE thermostats SET id_actual = 'i-set'", {"thermostats t-living"});
        row("UPDATE thermostat_ids SET item = 'i-dim' WHERE key = 'mode'",
            {"thermostats t-living"});
        row("DELETE FROM thermostats", {"elements e-therm", "thermostats t-living"});
        row("UPDATE elements SET name = 'Lamp' WHERE id = 'e-lamp'", {"elements e-lamp"});
        row("UPDATE elements SET name = name, type = type, flags = flags", {});
        row("UPDATE elements SET id = 'e-light' WHERE id = 'e-lamp'",
            {"elements e-lamp", "elements e-light"});
        row("DELETE FROM elements WHERE id = 'e-lamp'", {"elements e-lamp"});
        row("UPDATE functions SET item = 'i-dim' WHERE item = 'i-lamp'", {"elements e-lamp"});
        row("UPDATE functions SET item = item", {});
        row("DELETE FROM functions WHERE element = 'e-night'", {"elements e-night"});
        row("UPDATE permissions SET bits = 3 WHERE user = 'u-bob'",
            {"elements e-lamp", "elements e-therm"});
        row("UPDATE permissions SET bits = bits", {});
        row("DELETE FROM permissions WHERE element = 'e-night'", {"elements e-night"});
        row("INSERT INTO permissions VALUES ('u-bob', 'e-night', 1)", {"elements e-night"});
        row("DELETE FROM users WHERE id = 'u-alice'",
            {"elements e-lamp", "elements e-night", "elements e-therm", "users u-alice"});
        row("INSERT INTO users VALUES ('u-eve', 'eve', 'hash')", {"users u-eve"});
        row("UPDATE users SET password_hash = 'new' WHERE id = 'u-bob'", {"passwords u-bob"});
        row("UPDATE users SET username = 'rob' WHERE id = 'u-bob'",
            {"elements e-lamp", "elements e-therm", "users u-bob"});
        row("UPDATE users SET id = 'u-rob' WHERE id = 'u-bob'",
            {"elements e-lamp", "elements e-therm", "users u-bob", "users u-rob"});
        row("INSERT OR REPLACE INTO users VALUES ('u-eve', 'bob', 'hash')",
            {"elements e-lamp", "elements e-therm", "users u-bob", "users u-eve"});
        row("UPDATE meta SET value = 'other'", {"meta topic"});
    }
    void a_write_reports_what_it_affects() {
        QFETCH(QString, sql);
        QFETCH(QStringList, expected);
        for (const char* keys : {"ON", "OFF"}) {
            const sample::file_t file;
            connection_t writer;
            QVERIFY(open_database(writer, file.path(), 0).is_ok());
            QVERIFY(writer.run("DELETE FROM changes").is_ok());
            QVERIFY(writer.run(QLatin1String("PRAGMA foreign_keys = ") + keys).is_ok());
            const base::result_t result = writer.run(sql);
            QVERIFY2(result.is_ok(), qPrintable(result.error));
            sample::foreign_writer_t other(file.path());
            QCOMPARE(reports(&other), expected);
            QCOMPARE(other.read("SELECT count(*) FROM pragma_foreign_key_check"), "0");
        }
    }

    void names_that_would_widen_a_topic_are_refused_data() {
        QTest::addColumn<QString>("name");
        for (const char* name : {"", "+", "#", "a/b", "a b", "%u", "request", "myrequests", "ä"}) {
            QTest::newRow(name) << QString::fromUtf8(name);
        }
    }
    void names_that_would_widen_a_topic_are_refused() {
        QFETCH(QString, name);
        const sample::file_t file;
        connection_t writer;
        QVERIFY(open_database(writer, file.path(), 0).is_ok());
        QVERIFY(!writer.run("INSERT INTO users VALUES ('u-x', ?, 'hash')", {name}).is_ok());
        QVERIFY(!writer.run("INSERT INTO elements (id, type) VALUES (?, 1)", {name}).is_ok());
    }
};

QTEST_GUILESS_MAIN(tst_schema)
#include "tst_schema.moc"
