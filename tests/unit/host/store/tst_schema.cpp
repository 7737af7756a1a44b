#include "store/schema.h"

#include <QFile>
#include <QTest>
#include <thread>

#include "kit/sample_installation.h"

using namespace database::store;

/// Reports of the change table, without doubles, in first order.
static QStringList reports(sample::foreign_writer_t* _writer) {
    return _writer
        ->read(
            "SELECT group_concat(line) FROM (SELECT tab || ' ' || key AS line FROM changes "
            "GROUP BY line ORDER BY line)")
        .split(',', Qt::SkipEmptyParts);
}

static QByteArray content(const QString& _path) {
    QFile file(_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

class tst_schema : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_new_file_is_the_owner_s_alone() {
        const sample::file_t file;
        QCOMPARE(file.error, QString());
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QCOMPARE(QFile::permissions(file.path()) & others, QFile::Permissions());
    }

    void the_settings_are_in_force() {
        const sample::file_t file;
        connection_t connection;
        QVERIFY(open_database(connection, file.path(), 100).is_ok());
        QCOMPARE(connection.value("PRAGMA journal_mode").toString(), "wal");
        QCOMPARE(connection.value("PRAGMA foreign_keys").toInt(), 1);
        QCOMPARE(connection.value("PRAGMA synchronous").toInt(), 1);
        QCOMPARE(connection.value("PRAGMA busy_timeout").toInt(), 100);
        QCOMPARE(connection.value("PRAGMA user_version").toInt(), schema_version);
        QVERIFY(!connection.run("INSERT INTO functions VALUES ('none', 'execute', NULL)").is_ok());
    }

    void a_newer_layout_is_refused() {
        const sample::file_t file;
        sample::foreign_writer_t writer(file.path());
        QVERIFY(writer.write({"PRAGMA user_version = 2"}));
        connection_t connection;
        QCOMPARE(open_database(connection, file.path(), 0).error,
                 QStringLiteral("The database %1 has layout 2, but this program knows up to 1.")
                     .arg(file.path()));
        QCOMPARE(writer.read("PRAGMA user_version"), "2");
    }

    void a_damaged_file_is_refused_and_left_alone_data() {
        QTest::addColumn<qint64>("offset");
        QTest::addColumn<bool>("cut");
        QTest::newRow("no database at all") << qint64(0) << false;
        QTest::newRow("a page of zeros") << qint64(4096) << false;
        QTest::newRow("truncated") << qint64(10000) << true;
    }
    void a_damaged_file_is_refused_and_left_alone() {
        QFETCH(qint64, offset);
        QFETCH(bool, cut);
        const sample::file_t file;
        {
            QFile raw(file.path());
            QVERIFY(raw.open(QIODevice::ReadWrite));
            QVERIFY(cut ? raw.resize(offset) : raw.seek(offset));
            QVERIFY(cut || raw.write(QByteArray(4096, '\0')) == 4096);
        }
        const QByteArray before = content(file.path());
        connection_t connection;
        QCOMPARE(
            open_database(connection, file.path(), 0).error,
            QStringLiteral("The database %1 is damaged and was left as it is.").arg(file.path()));
        QCOMPARE(content(file.path()), before);
    }

    void another_program_s_database_is_refused() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("other.db");
        {
            sample::foreign_writer_t writer(path);
            QVERIFY(writer.write({"CREATE TABLE notes (text)"}));
        }
        connection_t connection;
        QCOMPARE(open_database(connection, path, 0).error,
                 QStringLiteral("The file %1 is not an installation database.").arg(path));
    }

    void a_folder_that_is_not_there_is_one_sentence() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("none/installation.db");
        connection_t connection;
        const QString error = open_database(connection, path, 0).error;
        QVERIFY2(error.startsWith("The database " + path + " cannot be opened: "),
                 qPrintable(error));
    }

    void two_programs_may_create_it_at_once() {
        const QTemporaryDir folder;
        const QString path = folder.filePath("installation.db");
        QString errors[2];
        const auto open = [&path](QString* _error) {
            connection_t connection;
            *_error = open_database(connection, path, 5000).error;
        };
        std::thread first(open, &errors[0]);
        std::thread second(open, &errors[1]);
        first.join();
        second.join();
        QCOMPARE(errors[0] + errors[1], QString());
    }

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
        row("UPDATE permissions SET bits = 1 WHERE user = 'u-bob'", {"elements e-lamp"});
        row("UPDATE permissions SET bits = bits", {});
        row("DELETE FROM permissions WHERE element = 'e-night'", {"elements e-night"});
        row("INSERT INTO permissions VALUES ('u-bob', 'e-therm', 1)", {"elements e-therm"});
        row("DELETE FROM users WHERE id = 'u-alice'",
            {"elements e-lamp", "elements e-night", "users u-alice"});
        row("INSERT INTO users VALUES ('u-eve', 'eve', 'hash')", {"users u-eve"});
        row("UPDATE users SET password_hash = 'new' WHERE id = 'u-bob'", {"passwords u-bob"});
        row("UPDATE users SET username = 'rob' WHERE id = 'u-bob'",
            {"elements e-lamp", "users u-bob"});
        row("UPDATE users SET id = 'u-rob' WHERE id = 'u-bob'",
            {"elements e-lamp", "users u-bob", "users u-rob"});
        row("INSERT OR REPLACE INTO users VALUES ('u-eve', 'bob', 'hash')",
            {"elements e-lamp", "users u-bob", "users u-eve"});
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
