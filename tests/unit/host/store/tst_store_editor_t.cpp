#include "store/store_editor_t.h"

#include <QTest>
#include <thread>

#include "database/name_rules.h"
#include "kit/name_samples.h"
#include "kit/sample_installation.h"

using namespace database::store;
using database::installation::installation_t;

class tst_store_editor_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        file = std::make_unique<sample::file_t>();
        store = std::make_unique<sqlite_store_t>();
        QVERIFY(store->open(file->path()).is_ok());
    }

    void a_user_may_be_named_by_id_or_by_name_data() {
        QTest::addColumn<QString>("user");
        QTest::newRow("id") << "u-bob";
        QTest::newRow("user name") << "bob";
    }
    void a_user_may_be_named_by_id_or_by_name() {
        QFETCH(QString, user);
        store_editor_t editor(store->connection());
        QVERIFY(editor.grant(user, "e-night", 1).is_ok());
        QCOMPARE(now().permissions["u-bob"]["e-night"], 1);
        QVERIFY(editor.set_password(user, "secret-hash").is_ok());
        QCOMPARE(now().users["u-bob"].password_hash, "secret-hash");
        QVERIFY(editor.remove_user(user).is_ok());
        QVERIFY(!now().users.contains("u-bob"));
        QVERIFY(!now().permissions.contains("u-bob"));
    }

    void an_id_goes_before_a_name() {
        store_editor_t editor(store->connection());
        sample::foreign_writer_t other(file->path());
        QVERIFY(other.write({"INSERT INTO users VALUES ('u-eve', 'u-bob', 'hash')"}));
        QVERIFY(editor.set_password("u-bob", "new").is_ok());
        QCOMPARE(now().users["u-bob"].password_hash, "new");
        QCOMPARE(now().users["u-eve"].password_hash, "hash");
    }

    void a_grant_is_changed_and_taken_away() {
        store_editor_t editor(store->connection());
        QVERIFY(editor.grant("alice", "e-lamp", 1).is_ok());
        QCOMPARE(now().permissions["u-alice"]["e-lamp"], 1);
        QVERIFY(editor.grant("alice", "e-lamp", 0).is_ok());
        QVERIFY(!now().permissions["u-alice"].contains("e-lamp"));
    }

    void a_new_user_may_sign_in_and_see_nothing() {
        store_editor_t editor(store->connection());
        QVERIFY(editor.add_user("eve", "hash").is_ok());
        QCOMPARE(now().users["u-eve"].username, "eve");
        QVERIFY(!now().permissions.contains("u-eve"));
    }

    void refusals_name_the_thing_and_change_nothing() {
        store_editor_t editor(store->connection());
        QCOMPARE(editor.grant("eve", "e-lamp", 1).error, "There is no user eve.");
        QCOMPARE(editor.grant("bob", "e-none", 1).error, "There is no element e-none.");
        QCOMPARE(editor.grant("bob", "e-lamp", 4).error, "The permission bits 4 are not 0 to 3.");
        QCOMPARE(editor.add_user("bob", "x").error, "There is a user bob already.");
        QCOMPARE(editor.set_password("eve", "x").error, "There is no user eve.");
        QCOMPARE(editor.remove_user("eve").error, "There is no user eve.");
        QCOMPARE(editor.set_item("i-none", "1").error, "There is no item i-none.");
        QCOMPARE(editor.set_scenario("s-none", true).error, "There is no scenario s-none.");
        QVERIFY(now() == sample::installation());
    }

    void nobody_is_called_missing_while_the_file_is_in_use() {
        database::store::connection_t other;
        store->connection().close();
        QVERIFY(other.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        QVERIFY(other.run("PRAGMA locking_mode = EXCLUSIVE").is_ok());
        QVERIFY(other.run("UPDATE items SET value = '1'").is_ok());
        connection_t impatient;
        QVERIFY(impatient.open(file->path(), connection_t::access_t::read_write, 0).is_ok());
        store_editor_t editor(impatient);
        const QString busy =
            QStringLiteral("The database %1 is in use by another program.").arg(file->path());
        QCOMPARE(editor.grant("bob", "e-lamp", 1).error, busy);
        QCOMPARE(editor.add_user("eve", "hash").error, busy);
        QCOMPARE(editor.set_password("bob", "hash").error, busy);
        QCOMPARE(editor.remove_user("bob").error, busy);
        QCOMPARE(editor.set_item("i-lamp", "1").error, busy);
    }

    void a_name_is_held_to_the_rule() {
        store_editor_t editor(store->connection());
        for (const sample::name_t& name : sample::identifiers()) {
            const base::result_t result = editor.add_user(name.text, "hash");
            QCOMPARE(result.error, name.error.isEmpty()
                                       ? QString()
                                       : QStringLiteral("The user name %1 %2.")
                                             .arg(database::quoted(name.text), name.error));
        }
    }

    void a_long_name_is_its_own_id() {
        store_editor_t editor(store->connection());
        const QString just_short(62, u'a');
        const QString just_long(63, u'b');
        QVERIFY(editor.add_user(just_short, "hash").is_ok());
        QVERIFY(editor.add_user(just_long, "hash").is_ok());
        QCOMPARE(now().users["u-" + just_short].username, just_short);
        QCOMPARE(now().users[just_long].username, just_long);
        QCOMPARE(editor.add_user(just_long, "hash").error,
                 QStringLiteral("There is a user %1 already.").arg(just_long));
    }

    void a_value_is_held_to_the_rule() {
        store_editor_t editor(store->connection());
        QCOMPARE(editor.set_item("i-lamp", QString(QChar(u'\0'))).error,
                 "The value must be text without NUL characters.");
        QVERIFY(now() == sample::installation());
    }

    void values_are_set() {
        store_editor_t editor(store->connection());
        QVERIFY(editor.set_item("i-lamp", "1").is_ok());
        QVERIFY(editor.set_item("i-dim", QString()).is_ok());
        QVERIFY(editor.set_scenario("s-night", true).is_ok());
        QCOMPARE(now().items["i-lamp"].value, "1");
        QCOMPARE(now().items["i-dim"].value, "");
        QCOMPARE(now().scenarios["s-night"], true);
    }

    void a_value_that_is_on_disk_already_is_reported_too() {
        sample::foreign_writer_t other(file->path());
        QVERIFY(other.write({"DELETE FROM changes"}));
        QVERIFY(store_editor_t(store->connection()).set_item("i-lamp", "0").is_ok());
        QCOMPARE(other.read("SELECT tab || ' ' || key FROM changes"), "items i-lamp");
    }

    void two_writers_at_once_lose_nothing() {
        sample::foreign_writer_t other(file->path());
        QVERIFY(other.write({"DELETE FROM changes"}));
        const auto write = [this](const QString& _prefix, QString* _error) {
            sqlite_store_t own;
            *_error = own.open(file->path()).error;
            for (int i = 0; i < 100 && _error->isEmpty(); ++i) {
                store_editor_t editor(own.connection());
                *_error = editor.add_user(_prefix + QString::number(i), "hash").error;
            }
        };
        QString errors[2];
        std::thread first(write, "a", &errors[0]);
        std::thread second(write, "b", &errors[1]);
        first.join();
        second.join();
        QCOMPARE(errors[0] + errors[1], QString());
        QCOMPARE(now().users.size(), 202);
        QCOMPARE(other.read("SELECT count(*) FROM changes WHERE tab = 'users'"), "200");
    }

 private:
    installation_t now() { return store->read().value; }

    std::unique_ptr<sample::file_t> file;
    std::unique_ptr<sqlite_store_t> store;
};

QTEST_GUILESS_MAIN(tst_store_editor_t)
#include "tst_store_editor_t.moc"
