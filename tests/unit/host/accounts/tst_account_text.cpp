#include <QTest>

#include "accounts/account_text.h"

using namespace accounts;

namespace {

const QByteArray expected_lines = R"(listener 0 /run/x/own/host
plugin /proc/self/fd/7
plugin_opt_host_account @torlan
plugin_opt_host_address /run/x/own/host
plugin_opt_host_hash $7$a hash
plugin_opt_idle_seconds 90
plugin_opt_publishes_per_second 10
plugin_opt_bytes_per_second 11
)";

const QString hash = "$7$101$" + QString(16, 'A') + "$" + QString(86, 'B') + "==";

}  // namespace

class tst_account_text : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void plugin_is_configured_as_written_down();
    void user_who_cannot_be_written_down_is_left_out_data();
    void user_who_cannot_be_written_down_is_left_out();
    void connection_topic_is_a_plain_topic_data();
    void connection_topic_is_a_plain_topic();
    void host_account_is_none_that_a_user_could_have();
};

void tst_account_text::plugin_is_configured_as_written_down() {
    const account_settings_t settings{"@torlan", "home/1/connection", std::chrono::seconds(90), 10,
                                      11};
    QCOMPARE(plugin_lines(settings, {"/proc/self/fd/7", "/run/x/own/host", "$7$a hash"}),
             expected_lines);
}

void tst_account_text::user_who_cannot_be_written_down_is_left_out_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("plain") << "alice" << hash << "";
    QTest::newRow("every letter") << "a.B_9-z" << hash << "";
    QTest::newRow("longest") << QString(64, 'x') << hash << "";
    for (const char* const name :
         {"", "@torlan", "@other", "a:b", "a b", "a/b", "a+", "#", "%u", "my-request"}) {
        QTest::newRow(QByteArray(name).prepend("name "))
            << name << hash
            << QStringLiteral("The user name \"%1\" cannot be a broker account.").arg(name);
    }
    QTest::newRow("two lines") << "a\nb" << hash
                               << "The user name \"a?b\" cannot be a broker account.";
    QTest::newRow("no hash") << "alice" << QString() << "The user \"alice\" has no password yet.";
    for (const QString& bad :
         {QString("secret"), hash + "\n", hash.mid(1), QString(hash).replace("7", "6")}) {
        QTest::newRow(bad.toUtf8().toPercentEncoding().prepend("hash "))
            << "alice" << bad << "The password hash of user \"alice\" has not the broker's form.";
    }
}

void tst_account_text::user_who_cannot_be_written_down_is_left_out() {
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(QString, sentence);
    const sorted_users_t sorted = sort_users({{"first", hash}, {name, password}, {"last", hash}});
    QCOMPARE(sorted.left_out, sentence.isEmpty() ? QStringList() : QStringList{sentence});
    QCOMPARE(sorted.fit.size(), sentence.isEmpty() ? 3 : 2);
    QCOMPARE(sorted.fit.last().name, QString("last"));
}

void tst_account_text::connection_topic_is_a_plain_topic_data() {
    QTest::addColumn<bool>("accepted");
    for (const char* const topic : {"home/1/connection", "", "c", "my home/connection"}) {
        QTest::newRow(topic) << true;
    }
    for (const char* const topic :
         {"#", "a/+", "a/#", "$SYS/x", " a", "a ", "a\nb", "a\npattern readwrite #", "%u"}) {
        QTest::newRow(topic) << false;
    }
}

void tst_account_text::connection_topic_is_a_plain_topic() {
    QTEST(check_settings({"@torlan", QTest::currentDataTag()}).is_ok(), "accepted");
}

void tst_account_text::host_account_is_none_that_a_user_could_have() {
    QVERIFY(check_settings({"@torlan", {}}).is_ok());
    for (const char* const name : {"", "@", "torlan", "@a b", "@a\n"}) {
        QVERIFY2(!check_settings({name, {}}).is_ok(), name);
    }
}

QTEST_GUILESS_MAIN(tst_account_text)
#include "tst_account_text.moc"
