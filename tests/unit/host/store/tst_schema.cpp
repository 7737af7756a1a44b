#include "store/schema.h"

#include <QTest>

#include "kit/name_samples.h"
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
        row("INSERT INTO items (id, value) VALUES ('i-new', '1')", {"items i-new"});
        row("UPDATE items SET writable = 0 WHERE id = 'i-lamp'", {"limits i-lamp"});
        row("UPDATE items SET min = 0, max = 1, step = 1 WHERE id = 'i-lamp'", {"limits i-lamp"});
        row("UPDATE items SET value = '1', max = 1 WHERE id = 'i-lamp'",
            {"items i-lamp", "limits i-lamp"});
        row("UPDATE items SET writable = writable, min = min, max = max, step = step", {});
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
        row("DELETE FROM meta WHERE key = 'imported'", {});
        row("INSERT OR REPLACE INTO meta VALUES ('imported', 'now')", {});
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

    void every_name_is_held_to_the_rule_data() {
        QTest::addColumn<QString>("sql");
        for (const char* sql :
             {"INSERT INTO items (id) VALUES (?)", "INSERT INTO scenarios (id) VALUES (?)",
              "INSERT INTO thermostats (id) VALUES (?)",
              "INSERT INTO elements (id, type) VALUES (?, 1)",
              "INSERT INTO users VALUES (?, 'eve', 'hash')",
              "INSERT INTO users VALUES ('u-x', ?, 'hash')",
              "UPDATE users SET username = ? WHERE id = 'u-bob'"}) {
            QTest::newRow(sql) << QString(sql);
        }
    }
    void every_name_is_held_to_the_rule() {
        QFETCH(QString, sql);
        const sample::file_t file;
        connection_t writer;
        QVERIFY(open_database(writer, file.path(), 0).is_ok());
        for (const sample::name_t& name : sample::identifiers()) {
            QVERIFY(writer.run("BEGIN").is_ok());
            const base::result_t result = writer.run(sql, {name.text});
            QVERIFY2(result.is_ok() == name.error.isEmpty(), name.title);
            QVERIFY2(result.is_ok() || result.error.contains("must be 1 to 64 of the characters"),
                     qPrintable(result.error));
            QVERIFY(writer.run("ROLLBACK").is_ok());
        }
        // Bytes are no text, whatever they spell.
        QVERIFY(!writer.run(sql, {QByteArray("e-bytes")}).is_ok());
    }

    void a_topic_is_held_to_the_rule() {
        const sample::file_t file;
        connection_t writer;
        QVERIFY(open_database(writer, file.path(), 0).is_ok());
        for (const sample::name_t& topic : sample::topics()) {
            const base::result_t result =
                writer.run("UPDATE meta SET value = ? WHERE key = 'topic'", {topic.text});
            // How long a level is no check can say; the reader does.
            const bool long_level = QLatin1String(topic.title) == QLatin1String("long level");
            QVERIFY2(result.is_ok() == (topic.error.isEmpty() || long_level), topic.title);
        }
    }

    void texts_are_text_data() {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<bool>("may_be_empty");
        QTest::newRow("value") << "UPDATE items SET value = ? WHERE id = 'i-lamp'" << true;
        QTest::newRow("name") << "UPDATE elements SET name = ? WHERE id = 'e-lamp'" << true;
        QTest::newRow("hash") << "UPDATE users SET password_hash = ? WHERE id = 'u-bob'" << true;
        QTest::newRow("function") << "INSERT INTO functions VALUES ('e-lamp', ?, NULL)" << false;
        QTest::newRow("key") << "INSERT INTO thermostat_ids VALUES ('t-living', ?, NULL)" << false;
    }
    void texts_are_text() {
        QFETCH(QString, sql);
        QFETCH(bool, may_be_empty);
        const sample::file_t file;
        connection_t writer;
        QVERIFY(open_database(writer, file.path(), 0).is_ok());
        QVERIFY(writer.run(sql, {"Küche\n💡 21.5"}).is_ok());
        QVERIFY(writer.run(sql, {21.5}).is_ok());
        QCOMPARE(writer.run(sql, {""}).is_ok(), may_be_empty);
        QVERIFY(!writer.run(sql, {QString("a") + QChar(0)}).is_ok());
        QVERIFY(!writer.run(sql, {QByteArray("a")}).is_ok());
    }

    void the_tables_are_found() {
        QCOMPARE(table_names(), QStringList({"set_aside", "meta", "items", "scenarios",
                                             "thermostats", "thermostat_ids", "elements",
                                             "functions", "users", "permissions", "changes"}));
    }
};

QTEST_GUILESS_MAIN(tst_schema)
#include "tst_schema.moc"
