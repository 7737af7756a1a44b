#include <signal.h>

#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace kit;

using way_t = raw_mqtt_t::way_t;
Q_DECLARE_METATYPE(raw_mqtt_t::way_t)

namespace {

constexpr int refused_v5 = 0x87;
constexpr int refused_v3 = 5;
constexpr int unanswered = raw_mqtt_t::closed;

}  // namespace

/// Who is let in by the real broker with the plugin.
class tst_plugin_sign_in : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void cleanup();

    void nobody_before_the_host_has_spoken();
    void right_and_wrong_passwords_data();
    void right_and_wrong_passwords();
    void other_ways_to_sign_in_are_refused();
    void nobody_is_refused_without_name_or_password();
    void host_comes_by_the_unix_socket_only();
    void user_may_come_by_the_unix_socket();
    void client_identifier_of_another_user_is_refused_while_it_is_in_use();
    void host_is_not_thrown_off_by_its_identifier();
    void next_try_is_answered_when_there_is_no_time();
    void password_behind_a_nul_is_not_seen();
    void unusable_option_is_told();
    void hang_up_signal_changes_nothing_data();
    void hang_up_signal_changes_nothing();

 private:
    void start(const QByteArray& _options = "plugin_opt_at_once_ms 1000");
    int code_of(const raw_connect_t& _as, way_t _way = way_t::tcp) const;

    std::unique_ptr<plugin_broker_t> broker;
};

void tst_plugin_sign_in::start(const QByteArray& _options) {
    broker = std::make_unique<plugin_broker_t>(_options);
    QVERIFY(broker->connect_host());
    QCOMPARE(broker->tell_both(), "done 1");
}

void tst_plugin_sign_in::cleanup() {
    QVERIFY(!broker || broker->is_running());
    broker.reset();
}

int tst_plugin_sign_in::code_of(const raw_connect_t& _as, way_t _way) const {
    int code = 0;
    broker->enter(_as, &code, _way);
    return code;
}

void tst_plugin_sign_in::nobody_before_the_host_has_spoken() {
    broker = std::make_unique<plugin_broker_t>();
    QVERIFY(broker->connect_host());
    QCOMPARE(code_of({.name = "alice"}), unanswered);
    QCOMPARE(code_of({.name = "alice", .version = 4}), unanswered);
    QCOMPARE(broker->tell_both(), "done 1");
    QCOMPARE(code_of({.name = "alice"}), 0);
}

void tst_plugin_sign_in::right_and_wrong_passwords_data() {
    QTest::addColumn<way_t>("way");
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("refused");
    QTest::newRow("3.1 tcp") << way_t::tcp << 3 << refused_v3;
    QTest::newRow("3.1.1 tcp") << way_t::tcp << 4 << refused_v3;
    QTest::newRow("5 tcp") << way_t::tcp << 5 << refused_v5;
    QTest::newRow("3.1.1 websockets") << way_t::websockets << 4 << refused_v3;
    QTest::newRow("5 websockets") << way_t::websockets << 5 << refused_v5;
    QTest::newRow("5 unix socket") << way_t::local << 5 << refused_v5;
}

void tst_plugin_sign_in::right_and_wrong_passwords() {
    QFETCH(way_t, way);
    QFETCH(int, version);
    QFETCH(int, refused);
    start();
    const auto code = [&](const QByteArray& _name, const QByteArray& _password) {
        return code_of({.name = _name, .password = _password, .version = version}, way);
    };
    QCOMPARE(code("alice", "alice-pw"), 0);
    QCOMPARE(code("alice", "bob-pw"), refused);
    QCOMPARE(code("alice", ""), refused);
    QCOMPARE(code("carol", "carol-pw"), refused);
    QCOMPARE(code("alice+", "alice-pw"), refused);
    QCOMPARE(code("#", "x"), refused);
    QCOMPARE(code(QByteArray(60'000, 'a'), QByteArray(60'000, 'a')), refused);
}

void tst_plugin_sign_in::other_ways_to_sign_in_are_refused() {
    start();
    auto client = broker->client();
    QCOMPARE(client->connect({.auth_method = "SCRAM-SHA-1"}), refused_v5);
    client = broker->client();
    QCOMPARE(client->connect({.name = "alice", .auth_method = "x"}), refused_v5);
    // Not even with a good name and password.
    QCOMPARE(code_of({.name = "alice", .auth_method = "x"}), refused_v5);
    client = broker->client(way_t::local);
    QCOMPARE(client->connect({.name = "@torlan", .auth_method = "x"}), refused_v5);
}

void tst_plugin_sign_in::nobody_is_refused_without_name_or_password() {
    start();
    for (const int version : {3, 4, 5}) {
        const int refused = version == 5 ? refused_v5 : refused_v3;
        QCOMPARE(broker->client()->connect({.version = version}), refused);
        QCOMPARE(broker->client()->connect({.name = "alice", .version = version}), refused);
    }
    QCOMPARE(broker->client()->connect({.password = "alice-pw"}), refused_v5);
}

void tst_plugin_sign_in::host_comes_by_the_unix_socket_only() {
    start();
    const raw_connect_t host{
        .name = "@torlan", .password = plugin_broker_t::host_password, .id = "host-2"};
    QCOMPARE(code_of(host), refused_v5);
    QCOMPARE(code_of(host, way_t::websockets), refused_v5);
    QCOMPARE(code_of(host, way_t::local), 0);
    QCOMPARE(code_of({.name = "@torlan", .password = "guess"}, way_t::local), refused_v5);
}

void tst_plugin_sign_in::user_may_come_by_the_unix_socket() {
    start();
    const auto alice = broker->enter({.name = "alice"}, nullptr, way_t::local);
    QCOMPARE(alice->publish("local/api/v1/alice/phone/request/x", "{}"), 0x10);  // nobody listens
    QCOMPARE(alice->publish("x", "{}"), refused_v5);
}

void tst_plugin_sign_in::client_identifier_of_another_user_is_refused_while_it_is_in_use() {
    start();
    for (const way_t way : {way_t::tcp, way_t::websockets}) {
        auto alice = broker->enter({.name = "alice", .id = "shared"}, nullptr, way);
        QCOMPARE(code_of({.name = "bob", .id = "shared"}), refused_v5);
        QCOMPARE(code_of({.name = "bob", .id = "shared", .version = 4, .clean = false},
                         way_t::websockets),
                 refused_v3);
        QVERIFY(alice->is_alive());
        // Alice herself may, as ever.
        const auto again = broker->enter({.name = "alice", .id = "shared"});
        QVERIFY(alice->is_closed());
        again->disconnect();
        QCOMPARE(code_of({.name = "bob", .id = "shared"}), 0);
    }
}

void tst_plugin_sign_in::host_is_not_thrown_off_by_its_identifier() {
    start();
    QCOMPARE(code_of({.name = "alice", .id = "host"}), refused_v5);
    QVERIFY(broker->host->is_alive());
}

void tst_plugin_sign_in::next_try_is_answered_when_there_is_no_time() {
    start("plugin_opt_at_once_ms 0");
    broker->tell("change", {plugin_broker_t::user("carol", {}, 20'000)});
    const auto tries_until = [this](const raw_connect_t& _as, int _code) {
        int tries = 1;
        int code = code_of(_as);
        for (; code == unanswered && tries < 10'000; ++tries) {
            code = code_of(_as);
        }
        return code == _code ? tries : -1;
    };
    QVERIFY(tries_until({.name = "carol"}, 0) > 1);
    QCOMPARE(tries_until({.name = "carol"}, 0), 1);
    QVERIFY(tries_until({.name = "carol", .password = "x"}, refused_v5) > 1);
    QCOMPARE(tries_until({.name = "carol", .password = "x"}, refused_v5), 1);
    QVERIFY(tries_until({.name = "nobody"}, refused_v5) > 1);
    QCOMPARE(tries_until({.name = "nobody"}, refused_v5), 1);
}

void tst_plugin_sign_in::password_behind_a_nul_is_not_seen() {
    start();
    // The broker hands passwords over as texts that end there.
    QCOMPARE(code_of({.name = "alice", .password = QByteArray("alice-pw\0more", 13)}), 0);
    QCOMPARE(code_of({.name = "alice", .password = QByteArray("\0alice-pw", 9)}), refused_v5);
}

void tst_plugin_sign_in::unusable_option_is_told() {
    plugin_broker_t other("plugin_opt_idle_seconds soon");
    QVERIFY(other.process.waitForFinished(10'000));
    QVERIFY(other.process.exitCode() != 0);
    QVERIFY(other.output().contains("plugin_opt_idle_seconds has no useful value"));
}

void tst_plugin_sign_in::hang_up_signal_changes_nothing_data() {
    QTest::addColumn<int>("version");
    QTest::newRow("3.1.1") << 4;
    QTest::newRow("5") << 5;
}

void tst_plugin_sign_in::hang_up_signal_changes_nothing() {
    QFETCH(int, version);
    start();
    const auto alice = broker->enter({.name = "alice", .id = "a", .version = version});
    const raw_connect_t offline{
        .name = "bob", .id = "b", .version = version, .clean = false, .expiry = 1'000};
    auto bob = broker->enter(offline);
    bob->disconnect();
    ::kill(pid_t(broker->process.processId()), SIGHUP);
    // It is handled between two rounds of the broker.
    for (int i = 0; i < 10; ++i) {
        QVERIFY(alice->is_alive() && broker->host->is_alive());
    }
    QCOMPARE(code_of({.name = "carol"}), refused_v5);
    bob = broker->enter(offline);
    QVERIFY(bob->had_session());
}

QTEST_GUILESS_MAIN(tst_plugin_sign_in)
#include "tst_plugin_sign_in.moc"
