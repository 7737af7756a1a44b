#include <QTest>

#include "accounts/account_text.h"

using namespace accounts;

namespace {

const QByteArray expected_acl = R"(user @torlan
topic readwrite #

pattern write local/api/v1/%u/+/request/#
pattern read local/api/v1/%u/#
pattern read home/1/connection
)";

const QString hash = QStringLiteral("$7$101$YWJj$ZGVm/+8=");

}  // namespace

class tst_account_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void acl_is_as_written_down();
    void acl_without_connection_topic_has_no_line_for_it();
    void password_file_has_a_line_for_each_account();
    void check_refuses_what_would_change_the_meaning_data();
    void check_refuses_what_would_change_the_meaning();
    void check_refuses_a_host_account_that_a_user_could_have();
};

void tst_account_text::acl_is_as_written_down() {
    QCOMPARE(acl_file({"@torlan", "home/1/connection"}), expected_acl);
}

void tst_account_text::acl_without_connection_topic_has_no_line_for_it() {
    QCOMPARE(acl_file({}).count("pattern read"), qsizetype(1));
}

void tst_account_text::password_file_has_a_line_for_each_account() {
    QCOMPARE(password_file({{"@torlan", hash}, {"alice", hash}}),
             "@torlan:" + hash.toUtf8() + "\nalice:" + hash.toUtf8() + "\n");
    QCOMPARE(password_file({}), QByteArray());
}

void tst_account_text::check_refuses_what_would_change_the_meaning_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("topic");
    QTest::addColumn<bool>("accepted");
    const auto row = [](const char* _tag, const QString& _name, const QString& _password,
                        const QString& _topic, bool _accepted) {
        QTest::newRow(_tag) << _name << _password << _topic << _accepted;
    };
    row("plain", "alice", hash, "home/1/connection", true);
    row("every letter", "a.B_9-z", hash, "", true);
    row("one letter topic", "alice", hash, "c", true);
    row("blank in the topic", "alice", hash, "my home/connection", true);
    for (const char* const name :
         {"", "@torlan", "@other", "a:b", "a b", "a/b", "a+", "#", "a\nb", "a\n", "%u"}) {
        row(QByteArray(name).toPercentEncoding().prepend("name "), name, hash, "c", false);
    }
    for (const char* const bad : {"", "secret", "$6$YWJj$ZGVm", "$7$0$YWJj$ZGVm", "$7$101$YWJj$",
                                  "$7$101$YWJj$ZGVm\n", "$7$101$YWJj$ZG Vm"}) {
        row(QByteArray(bad).toPercentEncoding().prepend("hash "), "alice", bad, "c", false);
    }
    for (const char* const topic :
         {"#", "a/+", "a/#", "$SYS/x", " a", "a ", "a\nb", "a\npattern readwrite #", "%u"}) {
        row(QByteArray(topic).toPercentEncoding().prepend("topic "), "alice", hash, topic, false);
    }
}

void tst_account_text::check_refuses_what_would_change_the_meaning() {
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(QString, topic);
    QFETCH(bool, accepted);
    const account_settings_t settings{"@torlan", topic};
    const base::result_t result = check_accounts(settings, {{name, password}});
    QCOMPARE(result.is_ok(), accepted);
    QVERIFY(password != "secret" || !result.error.contains(password));
}

void tst_account_text::check_refuses_a_host_account_that_a_user_could_have() {
    QVERIFY(check_accounts({"@torlan", {}}, {}).is_ok());
    for (const char* const name : {"", "@", "torlan", "@a b", "@a\n"}) {
        QVERIFY2(!check_accounts({name, {}}, {}).is_ok(), name);
    }
}

QTEST_GUILESS_MAIN(tst_account_text)
#include "tst_account_text.moc"
