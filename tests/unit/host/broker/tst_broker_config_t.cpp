#include <QTest>

#include "broker/broker_config_t.h"

using broker::broker_account_t;
using broker::broker_config_t;
using broker::broker_settings_t;

namespace {

const QByteArray expected_configuration =
    R"(# Written by the server at every start: changes here are lost.
listener 1884 127.0.0.1
protocol mqtt
listener 9001 127.0.0.1
protocol websockets
socket_domain ipv4
allow_anonymous false
password_file /run/x/passwords
acl_file /run/x/acl
persistence false
set_tcp_nodelay true
max_queued_messages 1000000000
max_queued_bytes 1000
max_inflight_messages 7
max_packet_size 2000
sys_interval 0
log_dest stdout
log_type error
log_type warning
)";

const QByteArray expected_acl = R"(user @torlan
topic readwrite #

pattern write local/api/v1/%u/+/request/#
pattern read local/api/v1/%u/#
pattern read home/1/connection
)";

const QString hash = QStringLiteral("$7$101$YWJj$ZGVm/+8=");

}  // namespace

class tst_broker_config_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void configuration_is_as_written_down();
    void configuration_without_websockets_has_one_listener();
    void acl_is_as_written_down();
    void acl_without_connection_topic_has_no_line_for_it();
    void password_file_has_a_line_for_each_account();
    void check_refuses_what_would_change_the_meaning_data();
    void check_refuses_what_would_change_the_meaning();
};

void tst_broker_config_t::configuration_is_as_written_down() {
    broker_settings_t settings;
    settings.port = 1884;
    settings.websocket_port = 9001;
    settings.queued_bytes = 1'000;
    settings.in_flight_messages = 7;
    settings.packet_bytes = 2'000;
    QCOMPARE(broker_config_t::configuration(settings, "/run/x/passwords", "/run/x/acl"),
             expected_configuration);
}

void tst_broker_config_t::configuration_without_websockets_has_one_listener() {
    const QByteArray text = broker_config_t::configuration({}, "p", "a");
    QCOMPARE(text.count("listener "), qsizetype(1));
    QVERIFY(!text.contains("websockets"));
}

void tst_broker_config_t::acl_is_as_written_down() {
    broker_settings_t settings;
    settings.connection_topic = "home/1/connection";
    QCOMPARE(broker_config_t::acl_file(settings), expected_acl);
}

void tst_broker_config_t::acl_without_connection_topic_has_no_line_for_it() {
    QCOMPARE(broker_config_t::acl_file({}).count("pattern read"), qsizetype(1));
}

void tst_broker_config_t::password_file_has_a_line_for_each_account() {
    QCOMPARE(broker_config_t::password_file({{"@torlan", hash}, {"alice", hash}}),
             "@torlan:" + hash.toUtf8() + "\nalice:" + hash.toUtf8() + "\n");
    QCOMPARE(broker_config_t::password_file({}), QByteArray());
}

void tst_broker_config_t::check_refuses_what_would_change_the_meaning_data() {
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
    row("host's account", "@torlan", hash, "c", true);
    row("blank in the topic", "alice", hash, "my home/connection", true);
    for (const char* const name :
         {"", "@other", "a:b", "a b", "a/b", "a+", "#", "a\nb", "a\n", "%u"}) {
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

void tst_broker_config_t::check_refuses_what_would_change_the_meaning() {
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(QString, topic);
    QFETCH(bool, accepted);
    broker_settings_t settings;
    settings.connection_topic = topic;
    const broker::broker_result_t result = broker_config_t::check(settings, {{name, password}});
    QCOMPARE(result.is_ok(), accepted);
    QVERIFY(password != "secret" || !result.error.contains(password));
}

QTEST_GUILESS_MAIN(tst_broker_config_t)
#include "tst_broker_config_t.moc"
