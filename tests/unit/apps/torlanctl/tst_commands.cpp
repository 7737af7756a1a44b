#include <QJsonDocument>
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
    void grant_reaches_all_elements_or_those_of_a_type();
    void renamed_user_keeps_id_password_and_grants();
    void users_are_listed();
    void matrix_shows_who_may_do_what();
    void explanation_names_grant_and_topics();
    void password_file_must_be_its_owners_alone();
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

void tst_commands::grant_reaches_all_elements_or_those_of_a_type() {
    const auto bits = [this](const QString& _user) {
        return torlanctl->stored().permissions[_user];
    };
    using bits_t = QMap<QString, int>;
    QCOMPARE((*torlanctl)({"grant", "bob", "--type", "8", "readwrite"}).error, QString());
    QCOMPARE(bits("u-bob"), (bits_t{{"e-lamp", 1}, {"e-night", 3}, {"e-therm", 2}}));
    QCOMPARE((*torlanctl)({"grant", "--all", "bob", "read"}).error, QString());
    QCOMPARE(bits("u-bob"), (bits_t{{"e-lamp", 1}, {"e-night", 1}, {"e-therm", 1}}));
    QCOMPARE((*torlanctl)({"revoke", "bob", "--type=1"}).error, QString());
    QCOMPARE(bits("u-bob"), (bits_t{{"e-night", 1}, {"e-therm", 1}}));
    QCOMPARE((*torlanctl)({"revoke", "bob", "--all"}).error, QString());
    QCOMPARE(bits("u-bob"), bits_t());
    QCOMPARE(bits("u-alice"), (bits_t{{"e-lamp", 3}, {"e-night", 3}, {"e-therm", 1}}));
}

void tst_commands::renamed_user_keeps_id_password_and_grants() {
    const auto before = torlanctl->stored();
    QCOMPARE((*torlanctl)({"user", "rename", "alice", "carol"}).error, QString());
    auto after = torlanctl->stored();
    QCOMPARE(after.users["u-alice"].username, "carol");
    after.users["u-alice"].username = "alice";
    QVERIFY(after == before);
}

void tst_commands::users_are_listed() {
    QCOMPARE((*torlanctl)({"user", "list", "--json"}).output,
             "{\"grants\":3,\"id\":\"u-alice\",\"user\":\"alice\"}\n"
             "{\"grants\":2,\"id\":\"u-bob\",\"user\":\"bob\"}\n");
    QCOMPARE((*torlanctl)({"user", "list"}).output.section(QChar(' '), 0, 0), "alice");
}

void tst_commands::matrix_shows_who_may_do_what() {
    QCOMPARE((*torlanctl)({"matrix"}).output,
             "         alice  bob\n"
             "e-lamp   rw     r\n"
             "e-night  rw     .\n"
             "e-therm  r      w\n");
    QCOMPARE((*torlanctl)({"matrix", "bob"}).output,
             "         bob\ne-lamp   r\ne-night  .\ne-therm  w\n");
    QCOMPARE((*torlanctl)({"matrix", "--json", "bob"}).output,
             "{\"element\":\"e-lamp\",\"grants\":{\"bob\":\"read\"}}\n"
             "{\"element\":\"e-night\",\"grants\":{}}\n"
             "{\"element\":\"e-therm\",\"grants\":{\"bob\":\"write\"}}\n");
}

void tst_commands::explanation_names_grant_and_topics() {
    const auto told = QJsonDocument::fromJson(
        (*torlanctl)({"explain", "bob", "e-therm", "--json"}).output.toUtf8());
    QCOMPARE(told["grant"].toString(), "write");
    QCOMPARE(told["read"]["code"].toInt(), 401);
    QCOMPARE(told["write"]["code"].toInt(), 202);
    QCOMPARE(told["topics"]["state"].toString(),
             "local/api/v1/bob/status/elements/objects_list/e-therm");
    QVERIFY((*torlanctl)({"explain", "bob", "e-therm"})
                .output.contains("refused with 401: the grant write does not include it\n"));
}

void tst_commands::password_file_must_be_its_owners_alone() {
    const QString file = torlanctl->write("secret", "from a file\n");
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::ReadGroup));
    const call_t refused = (*torlanctl)({"user", "passwd", "alice", "--password-file", file});
    QCOMPARE(refused.status, 1);
    QVERIFY2(refused.error.contains(file + ": others can read it"), qPrintable(refused.error));
    QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner));
    QCOMPARE((*torlanctl)({"user", "passwd", "alice", "--password-file", file}).error, QString());
    QVERIFY(verify_password("from a file", torlanctl->stored().users["u-alice"].password_hash));
}

void tst_commands::refusal_is_one_sentence_that_names_the_thing_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("error");
    const auto row = [](const QStringList& _arguments, const QString& _error) {
        QTest::newRow(qPrintable(_arguments.join(' '))) << _arguments << _error;
    };
    row({"grant", "carol", "e-lamp", "read"}, "There is no user carol.");
    row({"grant", "carol", "--all", "read"}, "There is no user carol.");
    row({"grant", "alice", "--type", "3", "read"}, "There is no element of type 3.");
    row({"revoke", "alice", "e-x"}, "There is no element e-x.");
    row({"user", "rename", "alice", "bob"}, "There is a user bob already.");
    row({"user", "rename", "carol", "dave"}, "There is no user carol.");
    row({"user", "rename", "alice", "a/b"},
        "The user name \"a/b\" must be 1 to 64 of the characters 0-9 a-z A-Z . _ -.");
    row({"matrix", "carol"}, "There is no user carol.");
    row({"explain", "carol", "e-lamp"}, "There is no user carol.");
    row({"explain", "alice", "e-x"}, "There is no element e-x.");
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
    row({"user", "passwd", "alcie"}, "There is no user alcie. Did you mean alice?");
    row({"revoke", "alice", "e-lapm"}, "There is no element e-lapm. Did you mean e-lamp?");
    row({"explain", "alcie", "e-lapm"}, "There is no user alcie. Did you mean alice?");
    row({"item", "show", "i-dimm"}, "There is no item i-dimm. Did you mean i-dim?");
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
