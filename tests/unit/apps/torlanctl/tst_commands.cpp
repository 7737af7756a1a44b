#include <QTest>

#include "accounts/broker_hash.h"
#include "kit/password_of.h"
#include "unit/apps/torlanctl/torlanctl_t.h"

using accounts::verify_password;

/// The commands that change one thing.
class tst_commands : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void grant_sets_and_takes_a_permission_data();
    void grant_sets_and_takes_a_permission();
    void added_user_has_a_hashed_password_and_no_rights();
    void passwd_replaces_the_password();
    void removed_user_takes_its_grants_along();
    void set_reports_a_value_that_may_begin_with_a_minus_sign();
    void refusal_is_one_sentence_that_names_the_thing_data();
    void refusal_is_one_sentence_that_names_the_thing();

 private:
    std::unique_ptr<torlanctl_t> torlanctl;
};

void tst_commands::init() {
    torlanctl = std::make_unique<torlanctl_t>();
    QCOMPARE(torlanctl->import_small_home().status, 0);
}

void tst_commands::grant_sets_and_takes_a_permission_data() {
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("bits");
    QTest::newRow("read") << "read" << 1;
    QTest::newRow("write") << "write" << 2;
    QTest::newRow("readwrite") << "readwrite" << 3;
    QTest::newRow("deny") << "deny" << 0;
}

void tst_commands::grant_sets_and_takes_a_permission() {
    QFETCH(QString, word);
    const call_t call = (*torlanctl)({"grant", "alice", "e-lamp", word});
    QCOMPARE(call.error, QString());
    QCOMPARE(call.status, 0);
    QTEST(torlanctl->stored().permissions["u-alice"].value("e-lamp"), "bits");
}

void tst_commands::added_user_has_a_hashed_password_and_no_rights() {
    const call_t call = (*torlanctl)({"user", "add", "carol"}, "pass wörd\nsecond line\n");
    QCOMPARE(call.error, QString());
    QCOMPARE(call.status, 0);
    const auto stored = torlanctl->stored();
    QCOMPARE(stored.users.size(), 3);
    const auto carol = stored.users.value(stored.users.lastKey());
    QCOMPARE(carol.username, "carol");
    QVERIFY(verify_password("pass wörd", carol.password_hash));
    QVERIFY(!stored.permissions.contains(stored.users.lastKey()));
}

void tst_commands::passwd_replaces_the_password() {
    QVERIFY(verify_password(kit::password_of("alice"),
                            torlanctl->stored().users["u-alice"].password_hash));
    QCOMPARE((*torlanctl)({"user", "passwd", "alice"}, "other").error, QString());
    const QString hash = torlanctl->stored().users["u-alice"].password_hash;
    QVERIFY(verify_password("other", hash));
    QVERIFY(!verify_password(kit::password_of("alice"), hash));
}

void tst_commands::removed_user_takes_its_grants_along() {
    QCOMPARE((*torlanctl)({"user", "remove", "alice"}).error, QString());
    QCOMPARE(torlanctl->stored().users.keys(), QStringList("u-bob"));
    QCOMPARE(torlanctl->stored().permissions.keys(), QStringList("u-bob"));
}

void tst_commands::set_reports_a_value_that_may_begin_with_a_minus_sign() {
    QCOMPARE((*torlanctl)({"set", "i-lamp", "-5.5"}).error, QString());
    QCOMPARE(torlanctl->stored().items["i-lamp"].value, "-5.5");
    QCOMPARE((*torlanctl)({"set", "i-lamp", "zwölf ü\n"}).error, QString());
    QCOMPARE(torlanctl->stored().items["i-lamp"].value, "zwölf ü\n");
}

void tst_commands::refusal_is_one_sentence_that_names_the_thing_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& _arguments, const QString& _error) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << _error;
    };
    row({"grant", "carol", "e-lamp", "read"}, "There is no user carol.");
    row({"grant", "alice", "e-x", "read"}, "There is no element e-x.");
    row({"grant", "alice", "e-lamp", "all"},
        "\"all\" is no permission: read, write, readwrite or deny.");
    row({"user", "add", "alice"}, "There is a user alice already.");
    row({"user", "add", "a b"},
        "The user name \"a b\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.");
    row({"user", "add", "my-request"},
        "The user name \"my-request\" must not contain \"request\".");
    row({"user", "passwd", "carol"}, "There is no user carol.");
    row({"user", "remove", "carol"}, "There is no user carol.");
    row({"set", "i-x", "1"}, "There is no item i-x.");
}

void tst_commands::refusal_is_one_sentence_that_names_the_thing() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, error);
    const auto before = torlanctl->stored();
    const call_t call = (*torlanctl)(arguments, "secret\n");
    QCOMPARE(call.error, "torlanctl: " + error);
    QCOMPARE(call.status, 1);
    QCOMPARE(call.output, QString());
    QVERIFY(torlanctl->stored() == before);
}

QTEST_GUILESS_MAIN(tst_commands)
#include "tst_commands.moc"
