#include "broker/plugin/control_message_t.h"

#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace broker::plugin;

namespace {

control_message_t parse(const QByteArray& _text) {
    return control_message_t::parse({_text.constData(), std::size_t(_text.size())});
}

using texts_t = std::vector<std::string>;

}  // namespace

class tst_control_message_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void all_rows_are_read();
    void connection_topic_may_be_missing_empty_and_hold_blanks();
    void head_and_end_are_needed_data();
    void head_and_end_are_needed();
    void bad_row_is_left_out_and_the_others_count_data();
    void bad_row_is_left_out_and_the_others_count();
    void bad_password_removes_the_user();
    void ten_thousand_users();
};

void tst_control_message_t::all_rows_are_read() {
    const control_message_t message =
        parse("change 18\nconnection home/1/connection\n" + plugin_broker_t::user("alice") +
              "\nremove bob\nwithdraw carol\nremove dave\nend\n");
    QVERIFY(message.refused.empty() && message.left_out.empty());
    QVERIFY(message.kind == control_message_t::kind_t::change);
    QCOMPARE(message.number, 18u);
    QCOMPARE(message.connection_topic.value(), std::string("home/1/connection"));
    QCOMPARE(message.users.size(), 1u);
    QVERIFY(message.users.count("alice") == 1);
    QCOMPARE(message.removed, (texts_t{"bob", "dave"}));
    QCOMPARE(message.withdrawn, texts_t{"carol"});
    QVERIFY(parse("all 1\nend").kind == control_message_t::kind_t::all);
    QVERIFY(parse("seen 18446744073709551615\nend\n").kind == control_message_t::kind_t::seen);
}

void tst_control_message_t::connection_topic_may_be_missing_empty_and_hold_blanks() {
    QVERIFY(!parse("all 1\nend\n").connection_topic);
    QCOMPARE(parse("all 1\nconnection \nend\n").connection_topic.value(), std::string());
    QCOMPARE(parse("all 1\nconnection a b\nend\n").connection_topic.value(), std::string("a b"));
}

void tst_control_message_t::head_and_end_are_needed_data() {
    QTest::addColumn<QByteArray>("text");
    const QByteArray user = plugin_broker_t::user("alice");
    for (const QByteArray& text :
         {QByteArray(), QByteArray("\n"), QByteArray("all"), QByteArray("all 1"),
          QByteArray("all 1\n"), QByteArray("all\nend\n"), QByteArray("all x\nend\n"),
          QByteArray("all 1 \nend\n"), QByteArray("all -1\nend\n"), QByteArray(" all 1\nend\n"),
          QByteArray("all 18446744073709551616\nend\n"), QByteArray("forget 1\nend\n"),
          QByteArray("all 1\nen"), QByteArray("all 1\nend\n\n"), QByteArray("all 1\nend\nx"),
          QByteArray("all 1\n" + user + "\n"), QByteArray("all 1\n" + user), QByteArray("end\n")}) {
        QTest::newRow(text.left(30).toPercentEncoding().constData()) << text;
    }
}

void tst_control_message_t::head_and_end_are_needed() {
    QFETCH(QByteArray, text);
    QVERIFY(!parse(text).refused.empty());
}

void tst_control_message_t::bad_row_is_left_out_and_the_others_count_data() {
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QByteArray>("told");
    const auto row = [](const char* _name, const QByteArray& _row, const char* _told) {
        QTest::newRow(_name) << _row << QByteArray(_told);
    };
    const char* const name = "line 3: the name cannot be an account's";
    row("unknown word", "hello alice", "line 3: unknown word");
    row("end before the end", "end", "line 3: unknown word");
    row("empty row", "", "line 3: unknown word");
    row("user without anything", "user", name);
    row("user with a slash", plugin_broker_t::user("a/b"), name);
    row("user with a wildcard", plugin_broker_t::user("+"), name);
    row("the host's account", plugin_broker_t::user("@torlan"), name);
    row("user with NUL", "user da" + QByteArray(1, '\0') + "ve $7$1$x$x", name);
    row("twice", plugin_broker_t::user("alice", "other"), "line 3: alice stands twice");
    row("clear text", "user bob secret", "line 3: bob's password hash has another form");
    row("no hash", "user bob", "line 3: bob's password hash has another form");
    row("remove nobody", "remove ", name);
    row("withdraw nobody", "withdraw a b", name);
}

void tst_control_message_t::bad_row_is_left_out_and_the_others_count() {
    QFETCH(QByteArray, row);
    QFETCH(QByteArray, told);
    const control_message_t message =
        parse("all 1\n" + plugin_broker_t::user("alice") + "\n" + row + "\n" +
              plugin_broker_t::user("carol") + "\nend\n");
    QVERIFY(message.refused.empty());
    QCOMPARE(message.left_out, texts_t{told.toStdString()});
    QCOMPARE(message.users.size(), 2u);
    QVERIFY(message.users.at("alice") ==
            stored_hash_t::parse(plugin_broker_t::hash("alice-pw").constData()).value());
    QVERIFY(message.users.count("carol") == 1);
    QVERIFY(message.withdrawn.empty());
}

void tst_control_message_t::bad_password_removes_the_user() {
    const control_message_t message = parse("change 1\nuser bob secret\nend\n");
    QCOMPARE(message.removed, texts_t{"bob"});
    for (const std::string& line : message.left_out) {
        QVERIFY(line.find("secret") == std::string::npos);
    }
}

void tst_control_message_t::ten_thousand_users() {
    QByteArray text = "all 1\n";
    const QByteArray hash = plugin_broker_t::hash("x");
    for (int i = 0; i < 10'000; ++i) {
        text += "user u" + QByteArray::number(i) + " " + hash + "\n";
    }
    QCOMPARE(parse(text + "end\n").users.size(), 10'000u);
}

QTEST_GUILESS_MAIN(tst_control_message_t)
#include "tst_control_message_t.moc"
