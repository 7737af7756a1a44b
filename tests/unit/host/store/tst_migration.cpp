#include "store/migration.h"

#include <QTest>
#include <thread>

#include "kit/killed_child.h"
#include "kit/old_home_t.h"
#include "store/database_check.h"
#include "store/schema.h"

using namespace database::store;
using killed_child::blow_t;
using killed_child::ending_t;

namespace {

/// What a database consists of, apart from its rows.
const QString things = QStringLiteral(
    "SELECT group_concat(type || ' ' || name || ' ' || ifnull(sql, '-'), char(10)) FROM "
    "(SELECT * FROM sqlite_master ORDER BY type, name)");

const QStringList files{"installation.db", "installation.layout-1.db"};

bool is_one_sentence(const QString& _text) {
    return _text.endsWith(u'.') && !_text.contains(u'\n') && _text.contains("installation.");
}

}  // namespace

Q_DECLARE_METATYPE(blow_t)

class tst_migration : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void an_old_home_is_what_it_was_data() { every_layout(); }
    void an_old_home_is_what_it_was() {
        QFETCH(int, layout);
        const sample::old_home_t home({}, layout);
        QCOMPARE(home.migrate(),
                 QStringList(QStringLiteral("The database %1 had layout %2 and has layout 4 now; "
                                            "what it was is kept in %3.")
                                 .arg(home.path, QString::number(layout), home.copy)));
        QVERIFY(home.installation() == sample::installation());
    }

    void items_of_an_old_home_take_everything_data() { every_layout(); }
    void items_of_an_old_home_take_everything() {
        QFETCH(int, layout);
        const sample::old_home_t home({}, layout);
        home.migrate();
        QCOMPARE(home.read("SELECT count(*) FROM items WHERE writable = 1 AND min IS NULL AND "
                           "max IS NULL AND step IS NULL"),
                 "5");
    }

    void what_was_set_aside_before_stays_so() {
        const sample::old_home_t home(
            {"INSERT INTO set_aside (tab, content, reason) VALUES ('items', '{}', 'old')"}, 2);
        QCOMPARE(home.migrate().size(), 1);
        QCOMPARE(home.read("SELECT group_concat(reason) FROM set_aside"), "old");
    }

    void when_it_was_imported_stays_told() {
        const sample::old_home_t home({}, 2);
        home.migrate();
        QCOMPARE(home.read("SELECT value FROM meta WHERE key = 'imported'"),
                 "2026-11-01T12:00:00Z");
    }

    void it_cannot_be_told_from_a_new_one_data() { every_layout(); }
    void it_cannot_be_told_from_a_new_one() {
        QFETCH(int, layout);
        const sample::old_home_t home({}, layout);
        home.migrate();
        const sample::file_t fresh;
        sample::foreign_writer_t old(home.path);
        sample::foreign_writer_t made(fresh.path());
        QCOMPARE(old.read(things), made.read(things));
        for (const char* pragma : {"PRAGMA user_version", "PRAGMA application_id",
                                   "PRAGMA journal_mode", "PRAGMA quick_check"}) {
            QCOMPARE(old.read(pragma), made.read(pragma));
        }
        QCOMPARE(old.read("SELECT count(*) FROM pragma_foreign_key_check"), "0");
    }

    void it_is_migrated_once() {
        const sample::old_home_t home;
        home.migrate();
        QCOMPARE(home.migrate(), QStringList());
        QCOMPARE(home.files(), files);
    }

    void what_opened_it_holds_foreign_keys() {
        const sample::old_home_t home;
        connection_t connection;
        QVERIFY(open_database(connection, home.path, 0).is_ok());
        QCOMPARE(connection.value("PRAGMA foreign_keys").value.toInt(), 1);
        QVERIFY(!connection.run("INSERT INTO functions VALUES ('none', 'execute', NULL)").is_ok());
    }

    void without_a_copy_nothing_is_changed() {
        const sample::old_home_t home;
        QVERIFY(QDir().mkpath(home.copy + ".part/in the way"));
        QVERIFY(home.migrate().constFirst().startsWith("The copy "));
        QCOMPARE(home.read("PRAGMA user_version"), "1");
    }

    void display_names_and_values_are_cleaned_not_set_aside() {
        const sample::old_home_t home(
            {"UPDATE elements SET name = 'Kitchen' || char(0) || 'lamp' WHERE id = 'e-lamp'",
             "UPDATE elements SET name = x'4e69676874' WHERE id = 'e-night'",
             "UPDATE items SET value = '4' || char(0) || '1' WHERE id = 'i-dim'"});
        QCOMPARE(home.migrate().size(), 1);
        const auto whole = home.installation();
        QCOMPARE(whole.elements["e-lamp"].name, "Kitchen lamp");
        QCOMPARE(whole.elements["e-night"].name, "Night");
        QCOMPARE(whole.items["i-dim"].value, "41");
    }

    void a_server_that_follows_reads_everything_again_and_no_number_comes_back() {
        const sample::old_home_t home;
        const qint64 last =
            home.read("SELECT seq FROM sqlite_sequence WHERE name = 'changes'").toLongLong();
        QVERIFY(last > 10);
        home.migrate();
        QCOMPARE(home.read("SELECT group_concat(sequence || ' ' || tab) FROM changes"),
                 QStringLiteral("%1 bulk").arg(last + 1));
    }

    void an_old_file_with_anything_in_it_is_an_installation_data() {
        QTest::addColumn<QStringList>("sql");
        QTest::addColumn<bool>("holds");
        const QStringList none{"DELETE FROM meta", "DELETE FROM elements", "DELETE FROM users"};
        const auto with = [none](const char* _sql) { return none + QStringList(_sql); };
        QTest::newRow("nothing") << none << false;
        QTest::newRow("topic") << with("INSERT INTO meta VALUES ('topic', 'x')") << true;
        QTest::newRow("element") << with("INSERT INTO elements (id, type) VALUES ('e', 1)") << true;
        QTest::newRow("user") << with("INSERT INTO users VALUES ('u', 'eve', 'hash')") << true;
        QTest::newRow("row that is set aside")
            << with("INSERT INTO meta VALUES ('topic', 'home/#')") << true;
    }
    void an_old_file_with_anything_in_it_is_an_installation() {
        QFETCH(QStringList, sql);
        QFETCH(bool, holds);
        const sample::old_home_t home(sql);
        QCOMPARE(holds_installation(home.path, 0).value, holds);
        home.migrate();
        QCOMPARE(holds_installation(home.path, 0).value, holds);
        QCOMPARE(home.read("SELECT count(*) FROM meta WHERE key = 'imported'"),
                 QString::number(int(holds)));
    }

    void struck_at_any_moment_the_next_start_works_data() {
        QTest::addColumn<blow_t>("blow");
        QTest::addColumn<ending_t>("struck");
        QTest::addColumn<int>("step");
        QTest::newRow("killed") << blow_t::kill << ending_t::killed << MOMENTS;
        // The disk stays full, so that one moment is much like the next.
        QTest::newRow("disk full") << blow_t::full_disk << ending_t::short_of_space << 5 * MOMENTS;
    }
    void struck_at_any_moment_the_next_start_works() {
        QFETCH(blow_t, blow);
        QFETCH(ending_t, struck);
        QFETCH(int, step);
        const auto expected = sample::installation();
        const sample::old_home_t old;
        int call = 1;
        for (ending_t ending = struck; ending == struck; call += step) {
            const sample::old_home_t home(old);
            const auto open = [&home] {
                connection_t connection;
                const auto opened = open_database(connection, home.path, 1000);
                return opened.is_ok() || is_one_sentence(opened.error);
            };
            ending = killed_child::run(call, open, blow);
            QVERIFY(ending == struck || ending == ending_t::finished);
            QVERIFY(home.installation() == expected);
            QCOMPARE(home.read("SELECT integrity_check || (SELECT count(*) FROM sqlite_master "
                               "WHERE name LIKE 'former%') FROM pragma_integrity_check"),
                     "ok0");
            QCOMPARE(sample::foreign_writer_t(home.copy).read("SELECT count(*) FROM elements"),
                     "3");
            QStringList left = home.files();
            left.removeOne("installation.db.opening");  // a lock that was not written to its end
            QCOMPARE(left, files);
        }
        QVERIFY2(call > 100, qPrintable(QString::number(call)));
    }

    void two_programs_may_open_it_at_once() {
        const sample::old_home_t home;
        QStringList notes[2];
        const auto open = [&home](QStringList* _notes) { *_notes = home.migrate(); };
        std::thread first(open, &notes[0]);
        std::thread second(open, &notes[1]);
        first.join();
        second.join();
        QCOMPARE((notes[0] + notes[1]).size(), 1);
        QVERIFY((notes[0] + notes[1]).constFirst().contains(" has layout 4 now; "));
    }

    void every_older_layout_lacks_what_came_later() {
        QCOMPARE(tables_of_layout(schema_version), table_names());
        QVERIFY(!tables_of_layout(1).contains("set_aside"));
        QCOMPARE(tables_of_layout(1).size(), table_names().size() - 1);
        QCOMPARE(tables_of_layout(2), table_names());
        QCOMPARE(tables_of_layout(3), table_names());
    }

 private:
    static void every_layout() {
        QTest::addColumn<int>("layout");
        for (int layout = 1; layout < schema_version; ++layout) {
            QTest::addRow("layout %d", layout) << layout;
        }
    }
};

QTEST_GUILESS_MAIN(tst_migration)
#include "tst_migration.moc"
