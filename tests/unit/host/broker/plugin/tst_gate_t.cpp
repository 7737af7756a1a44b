#include "broker/plugin/gate_t.h"

#include <QTest>
#include <algorithm>
#include <utility>

#include "unit/host/broker/plugin/fake_port_t.h"
#include "unit/host/broker/plugin/plugin_parts.h"

using namespace broker::plugin;
using namespace std::chrono_literals;
using entry_t = gate_t::entry_t;
using access_t = gate_t::access_t;

namespace {

const std::string report_topic = host_link_t::report_topic;
constexpr const char* own_request = "local/api/v1/alice/phone/request/x";
constexpr const char* own_status = "local/api/v1/alice/status/x";

}  // namespace

/// The decisions, without a broker.
class tst_gate_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();

    void nobody_comes_in_before_the_host_has_told();
    void change_before_all_is_refused();
    void host_comes_in_by_its_socket_only();
    void host_needs_its_password();
    void strange_sign_in_is_refused_data();
    void strange_sign_in_is_refused();
    void rights_are_those_of_the_topics();
    void unknown_object_has_no_rights();
    void host_may_everything();
    void rights_end_with_the_account();
    void rights_of_a_former_life_are_gone();
    void connection_topic_changes();
    void users_control_messages_do_nothing();
    void identifier_of_a_connected_user_is_not_given_away();
    void identifier_of_a_connected_host_is_not_given_away();
    void own_identifier_is_taken_over();
    void nothing_is_inherited_from_another_user();
    void nothing_is_inherited_from_a_former_life();
    void nothing_is_inherited_after_something_was_withdrawn();
    void clean_start_inherits_nothing_and_is_let_in();
    void sessions_are_deleted_by_the_host();
    void host_is_asked_again();
    void user_with_too_many_deletions_waits_and_nobody_else_does();
    void reports_tell_what_happened();
    void who_publishes_too_much_is_stopped_and_told_once();
    void who_floods_is_sent_away_and_comes_in_later();
    void what_is_refused_is_measured_too();
    void reports_wait_for_the_host();
    void reload_lets_everybody_stay_until_the_next_tick();
    void reload_lets_no_stranger_in();
    void last_will_is_judged_after_the_end();
    void users_are_closed_without_the_gate_being_confused();

 private:
    entry_t enter(const QByteArray& _name, const QByteArray& _id, int _object = 0,
                  bool _clean = true);
    entry_t enter_host(const QByteArray& _id = "host", int _object = 900);
    void leave(int _object);
    void tell(const QByteArray& _kind, const QByteArrayList& _rows);
    void tell_both();
    /// The rows of all reports that are due, acknowledged.
    QByteArrayList report();
    sign_in_t sign_in_of(const QByteArray& _name, const QByteArray& _id, int _object);

    fake_port_t port;
    std::unique_ptr<gate_t> gate;
    moment_t now;
    QList<QByteArray> texts;  ///< what views point to
    char objects[1'000] = {};
};

void tst_gate_t::init() {
    port = fake_port_t();
    now = {1'000s, 77};
    gate_settings_t settings;
    settings.set("host_account", "@torlan");
    settings.set("host_address", "/run/socket");
    settings.set("host_hash", plugin_broker_t::hash("host-pw", 1).constData());
    settings.set("idle_seconds", "100");
    settings.set("at_once_ms", "1000");
    QCOMPARE(settings.check(), std::string());
    gate = std::make_unique<gate_t>(settings, &port, [this]() { return now; });
}

sign_in_t tst_gate_t::sign_in_of(const QByteArray& _name, const QByteArray& _id, int _object) {
    texts += {_name, _name + "-pw", _id};
    const QByteArray* const last = &texts[texts.size() - 3];
    sign_in_t made;
    made.client = objects + _object;
    made.name = last[0].constData();
    made.password = last[1].constData();
    made.id = last[2].constData();
    made.address = "127.0.0.1";
    return made;
}

entry_t tst_gate_t::enter(const QByteArray& _name, const QByteArray& _id, int _object,
                          bool _clean) {
    sign_in_t who = sign_in_of(_name, _id, _object);
    who.clean = _clean;
    return gate->sign_in(who);
}

entry_t tst_gate_t::enter_host(const QByteArray& _id, int _object) {
    sign_in_t who = sign_in_of("@torlan", _id, _object);
    who.password = "host-pw";
    who.address = "/run/socket";
    return gate->sign_in(who);
}

void tst_gate_t::leave(int _object) {
    gate->departed(objects + _object);
    gate->tick();
}

void tst_gate_t::tell(const QByteArray& _kind, const QByteArrayList& _rows) {
    const QByteArray text = _kind + " 5\n" + (_rows + QByteArrayList{"end"}).join("\n");
    gate->control(objects + 900, text.constData());
}

void tst_gate_t::tell_both() {
    QVERIFY(enter_host() == entry_t::open);
    tell("all", {"connection home/1/connection", plugin_broker_t::user("alice"),
                 plugin_broker_t::user("bob")});
    QCOMPARE(port.sent.back().text, std::string("done 5\n"));
    port.sent.clear();
}

QByteArrayList tst_gate_t::report() {
    QByteArrayList rows;
    gate->tick();
    while (!port.sent.empty()) {
        for (const fake_port_t::sent_t& sent : std::exchange(port.sent, {})) {
            if (sent.topic == report_topic) {
                QByteArrayList lines = QByteArray::fromStdString(sent.text).chopped(1).split('\n');
                const QByteArray text = "seen " + lines.takeFirst().mid(7) + "\nend\n";
                gate->control(objects + 900, text.constData());
                rows += lines;
            }
        }
        gate->tick();
    }
    return rows;
}

void tst_gate_t::nobody_comes_in_before_the_host_has_told() {
    QVERIFY(enter("alice", "phone") == entry_t::unanswered);
    QVERIFY(enter_host() == entry_t::open);
    QVERIFY(enter("alice", "phone") == entry_t::unanswered);
    tell("all", {plugin_broker_t::user("alice")});
    QVERIFY(enter("alice", "phone") == entry_t::open);
    QVERIFY(enter("bob", "phone") == entry_t::refused);
}

void tst_gate_t::change_before_all_is_refused() {
    enter_host();
    tell("change", {plugin_broker_t::user("alice")});
    QCOMPARE(port.sent.back().text, std::string("refused 5 nothing was told that could change\n"));
    QVERIFY(enter("alice", "phone") == entry_t::unanswered);
}

void tst_gate_t::host_comes_in_by_its_socket_only() {
    for (const char* const address : {"127.0.0.1", "", "/run/socket2", "/run/socke"}) {
        sign_in_t who = sign_in_of("@torlan", "host", 0);
        who.password = "host-pw";
        who.address = address;
        QVERIFY(gate->sign_in(who) == entry_t::refused);
    }
    QVERIFY(!gate->may(objects, access_t::write, "x", false));
}

void tst_gate_t::host_needs_its_password() {
    sign_in_t who = sign_in_of("@torlan", "host", 0);
    who.address = "/run/socket";
    for (const char* const password : {"", "host-p", "host-pw2", "alice-pw"}) {
        who.password = password;
        QVERIFY(gate->sign_in(who) == entry_t::refused);
    }
    who.password = {};
    QVERIFY(gate->sign_in(who) == entry_t::refused);
    tell_both();
    QVERIFY(gate->sign_in(who) == entry_t::refused);
}

void tst_gate_t::strange_sign_in_is_refused_data() {
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("password");
    QTest::addColumn<QByteArray>("id");
    const auto row = [](const char* _what, const QByteArray& _name, bool _password,
                        const QByteArray& _id) {
        QTest::newRow(_what) << _name << _password << _id;
    };
    row("no name", "", true, "phone");
    row("no password", "alice", false, "phone");
    row("neither", "", false, "phone");
    row("wildcard", "+", true, "phone");
    row("long name", QByteArray(65'535, 'a'), true, "phone");
    row("long identifier", "alice", true, QByteArray(1'025, 'i'));
    row("no identifier", "alice", true, "");
}

void tst_gate_t::strange_sign_in_is_refused() {
    tell_both();
    QFETCH(QByteArray, name);
    QFETCH(bool, password);
    QFETCH(QByteArray, id);
    sign_in_t who = sign_in_of(name, id, 0);
    if (!password) {
        who.password = {};
    }
    QVERIFY(gate->sign_in(who) == entry_t::refused);
    QVERIFY(!gate->may(objects, access_t::write, own_request, false));
    QCOMPARE(report().size(), 1);
}

void tst_gate_t::rights_are_those_of_the_topics() {
    tell_both();
    QVERIFY(enter("alice", "phone") == entry_t::open);
    const auto may = [this](access_t _access, const char* _topic, bool _retain = false) {
        return gate->may(objects, _access, _topic, _retain);
    };
    QVERIFY(may(access_t::write, own_request));
    QVERIFY(!may(access_t::write, own_request, true));
    QVERIFY(!may(access_t::write, own_status));
    QVERIFY(!may(access_t::write, "$CONTROL/torlan/v1"));
    QVERIFY(may(access_t::read, own_status));
    QVERIFY(may(access_t::read, own_status, true));
    QVERIFY(may(access_t::read, "home/1/connection", true));
    QVERIFY(!may(access_t::read, "local/api/v1/bob/status/x"));
    QVERIFY(may(access_t::subscribe, "local/api/v1/alice/#"));
    QVERIFY(!may(access_t::subscribe, "#"));
    QVERIFY(!may(access_t::subscribe, "$share/g/local/api/v1/bob/#"));
    QVERIFY(may(access_t::unsubscribe, "#"));
}

void tst_gate_t::unknown_object_has_no_rights() {
    tell_both();
    for (const access_t access :
         {access_t::read, access_t::write, access_t::subscribe, access_t::unsubscribe}) {
        QVERIFY(!gate->may(objects + 5, access, own_request, false));
    }
    gate->departed(objects + 5);
}

void tst_gate_t::host_may_everything() {
    tell_both();
    for (const access_t access : {access_t::read, access_t::write, access_t::subscribe}) {
        QVERIFY(gate->may(objects + 900, access, "#", true));
        QVERIFY(gate->may(objects + 900, access, "$CONTROL/torlan/v1", false));
    }
}

void tst_gate_t::rights_end_with_the_account() {
    tell_both();
    enter("alice", "phone");
    tell("change", {"remove alice"});
    QCOMPARE(port.closed, std::vector<std::string>{"alice"});
    QVERIFY(!gate->may(objects, access_t::write, own_request, false));
    QVERIFY(!gate->may(objects, access_t::read, own_status, false));
    QVERIFY(!gate->may(objects, access_t::subscribe, "local/api/v1/alice/#", false));
    QVERIFY(enter("alice", "tablet", 1) == entry_t::refused);
}

void tst_gate_t::rights_of_a_former_life_are_gone() {
    tell_both();
    enter("alice", "phone");
    tell("change", {"remove alice"});
    tell("change", {plugin_broker_t::user("alice")});
    QVERIFY(!gate->may(objects, access_t::write, own_request, false));
    QVERIFY(!gate->may(objects, access_t::read, own_status, false));
    QVERIFY(enter("alice", "tablet", 1) == entry_t::open);
    QVERIFY(gate->may(objects + 1, access_t::write, own_request, false));
    port.closed.clear();
    tell("change", {plugin_broker_t::user("bob", "other")});
    QCOMPARE(port.closed, std::vector<std::string>{"bob"});
    QVERIFY(gate->may(objects + 1, access_t::write, own_request, false));
}

void tst_gate_t::connection_topic_changes() {
    tell_both();
    enter("alice", "phone");
    tell("change", {});
    QVERIFY(gate->may(objects, access_t::read, "home/1/connection", true));
    tell("change", {"connection home/2/connection"});
    QVERIFY(!gate->may(objects, access_t::read, "home/1/connection", true));
    QVERIFY(gate->may(objects, access_t::subscribe, "home/2/connection", true));
    tell("all", {plugin_broker_t::user("alice")});
    QVERIFY(!gate->may(objects, access_t::read, "home/2/connection", true));
    QVERIFY(!gate->may(objects, access_t::read, "", true));
}

void tst_gate_t::users_control_messages_do_nothing() {
    tell_both();
    enter("alice", "phone");
    gate->control(objects, "all 6\nend\n");
    gate->control(objects + 5, "all 6\nend\n");
    QVERIFY(port.sent.empty());
    QVERIFY(enter("bob", "tablet", 1) == entry_t::open);
}

void tst_gate_t::identifier_of_a_connected_user_is_not_given_away() {
    tell_both();
    enter("alice", "phone");
    QVERIFY(enter("bob", "phone", 1) == entry_t::refused);
    QVERIFY(enter("bob", "phone", 1, false) == entry_t::refused);
    QVERIFY(gate->may(objects, access_t::write, own_request, false));
    leave(0);
    QVERIFY(enter("bob", "phone", 1) == entry_t::open);
}

void tst_gate_t::identifier_of_a_connected_host_is_not_given_away() {
    tell_both();
    QVERIFY(enter("bob", "host", 1) == entry_t::refused);
    // But the host gets it from everybody.
    enter("bob", "host-2", 1);
    QVERIFY(enter_host("host-2", 901) == entry_t::open);
}

void tst_gate_t::own_identifier_is_taken_over() {
    tell_both();
    enter("alice", "phone");
    QVERIFY(enter("alice", "phone", 1, false) == entry_t::open);
    leave(0);
    QVERIFY(gate->may(objects + 1, access_t::write, own_request, false));
    port.kept.insert("phone");
    leave(1);
    QVERIFY(enter("alice", "phone", 2, false) == entry_t::open);
}

void tst_gate_t::nothing_is_inherited_from_another_user() {
    tell_both();
    enter("alice", "phone", 0, false);
    port.kept.insert("phone");
    leave(0);
    report();
    QVERIFY(enter("bob", "phone", 1, false) == entry_t::unanswered);
    QVERIFY(report().contains("delete phone"));
    QVERIFY(enter("bob", "phone", 1, false) == entry_t::unanswered);
    enter_host("phone", 901);
    port.kept.clear();
    leave(901);
    QVERIFY(enter("bob", "phone", 1, false) == entry_t::open);
}

void tst_gate_t::nothing_is_inherited_from_a_former_life() {
    tell_both();
    enter("alice", "phone", 0, false);
    port.kept.insert("phone");
    leave(0);
    tell("change", {"remove alice", plugin_broker_t::user("alice")});
    QVERIFY(enter("alice", "phone", 1, false) == entry_t::unanswered);
    QVERIFY(report().contains("delete phone"));
}

void tst_gate_t::nothing_is_inherited_after_something_was_withdrawn() {
    tell_both();
    enter("alice", "phone", 0, false);
    enter("bob", "tablet", 1, false);
    tell("change", {"withdraw alice"});
    QVERIFY(port.closed.empty());
    QVERIFY(gate->may(objects, access_t::read, own_status, false));
    // While it is connected: another connection must not inherit its queue.
    QVERIFY(enter("alice", "phone", 2, false) == entry_t::unanswered);
    QVERIFY(report().contains("delete phone"));
    port.kept = {"phone", "tablet"};
    leave(0);
    leave(1);
    QVERIFY(enter("alice", "phone", 3, false) == entry_t::unanswered);
    QVERIFY(enter("bob", "tablet", 4, false) == entry_t::open);
}

void tst_gate_t::clean_start_inherits_nothing_and_is_let_in() {
    tell_both();
    enter("alice", "phone", 0, false);
    port.kept.insert("phone");
    leave(0);
    tell("change", {"withdraw alice"});
    QVERIFY(enter("alice", "phone", 1, true) == entry_t::open);
    for (const QByteArray& row : report()) {
        QVERIFY(!row.startsWith("delete"));
    }
}

void tst_gate_t::sessions_are_deleted_by_the_host() {
    tell_both();
    for (int i = 0; i < 5; ++i) {
        const QByteArray id = "a b" + QByteArray::number(i);
        enter("alice", id, i, false);
        port.kept.insert(id.toStdString());
        leave(i);
    }
    report();
    tell("change", {"remove alice"});
    QByteArrayList rows = report();
    std::sort(rows.begin(), rows.end());
    QCOMPARE(rows, (QByteArrayList{"delete a%20b0", "delete a%20b1", "delete a%20b2",
                                   "delete a%20b3", "delete a%20b4"}));
    QCOMPARE(report(), QByteArrayList());
}

void tst_gate_t::user_with_too_many_deletions_waits_and_nobody_else_does() {
    tell_both();
    int object = 0;
    // A session of his own is left behind each time; the host deletes none.
    for (; object < 500; ++object) {
        const QByteArray id = "b" + QByteArray::number(object);
        if (enter("bob", id, object, false) != entry_t::open) {
            break;
        }
        port.kept.insert(id.toStdString());
        leave(object);
    }
    QCOMPARE(object, 108);  // 8 are kept, 100 wait to be deleted
    QVERIFY(enter("bob", "one-more", 600) == entry_t::unanswered);
    QVERIFY(enter("alice", "phone", 601) == entry_t::open);
    enter_host("b0", 901);
    leave(901);
    QVERIFY(enter("bob", "one-more", 600) == entry_t::open);
}

void tst_gate_t::host_is_asked_again() {
    tell_both();
    enter("alice", "phone", 0, false);
    port.kept.insert("phone");
    leave(0);
    report();
    now.steady += 101s;
    QCOMPARE(report(), QByteArrayList{"delete phone"});
    QCOMPARE(report(), QByteArrayList());
    now.steady += 5s;
    QCOMPARE(report(), QByteArrayList{"delete phone"});
    enter_host("phone", 901);
    port.kept.clear();
    leave(901);
    now.steady += 5s;
    QCOMPARE(report(), QByteArrayList());
}

void tst_gate_t::reports_tell_what_happened() {
    tell_both();
    enter("alice", "phone");
    QCOMPARE(report(), QByteArrayList{"event signed-in 1 77 77 alice phone 127.0.0.1 -"});
    gate->may(objects, access_t::write, "home/x", false);
    gate->may(objects, access_t::subscribe, "#", false);
    gate->may(objects, access_t::subscribe, "$SYS/#", false);
    gate->may(objects, access_t::read, "home/x", false);
    enter("bob", "phone", 1);
    leave(0);
    QCOMPARE(report(), (QByteArrayList{"event write-refused 1 77 77 alice phone 127.0.0.1 home/x",
                                       "event subscribe-refused 2 77 77 alice phone 127.0.0.1 #",
                                       "event refused 1 77 77 bob phone 127.0.0.1 "
                                       "another%20user%20has%20this%20client%20identifier",
                                       "event departed 1 77 77 alice phone 127.0.0.1 -"}));
    sign_in_t who = sign_in_of("@torlan", "x", 3);
    gate->sign_in(who);
    QCOMPARE(report(), QByteArrayList{"event failed 1 77 77 @torlan x 127.0.0.1 "
                                      "the%20host's%20account%20from%20elsewhere"});
}

void tst_gate_t::who_publishes_too_much_is_stopped_and_told_once() {
    tell_both();
    enter("alice", "phone");
    enter("bob", "pad", 1);
    report();
    int passed = 0;
    for (int i = 0; i < 3'000; ++i) {
        passed += gate->may(objects, access_t::write, own_request, false, 10) ? 1 : 0;
    }
    QCOMPARE(passed, 1'000);
    QVERIFY(gate->may(objects, access_t::subscribe, own_status, false));
    QVERIFY(gate->may(objects + 1, access_t::write, "local/api/v1/bob/pad/request/x", false, 10));
    QCOMPARE(report(), (QByteArrayList{"event flooding 1 77 77 alice phone 127.0.0.1 " +
                                       QByteArray(own_request)}));
    now.steady += 1s;
    QVERIFY(gate->may(objects, access_t::write, own_request, false, 10));
}

void tst_gate_t::who_floods_is_sent_away_and_comes_in_later() {
    tell_both();
    enter("alice", "phone");
    enter("alice", "tablet", 1);
    enter("bob", "pad", 2);
    for (int i = 0; i < 6'000; ++i) {
        gate->may(objects, access_t::write, own_request, false, 10);
    }
    QVERIFY(port.closed_clients.empty());  // the broker is busy with it
    gate->tick();
    QCOMPARE(port.closed_clients, std::vector<std::string>{"phone"});
    leave(0);
    gate->tick();
    QCOMPARE(port.closed_clients.size(), 1u);
    QCOMPARE(enter("alice", "phone"), entry_t::unanswered);
    QCOMPARE(enter("bob", "phone-2", 3), entry_t::open);
    now.steady += 5s;
    QCOMPARE(enter("alice", "phone"), entry_t::open);
}

void tst_gate_t::what_is_refused_is_measured_too() {
    tell_both();
    enter("alice", "phone");
    for (int i = 0; i < 6'000; ++i) {
        QVERIFY(!gate->may(objects, access_t::write, "local/api/v1/bob/pad/request/x", false, 10));
    }
    gate->tick();
    QCOMPARE(port.closed_clients, std::vector<std::string>{"phone"});
}

void tst_gate_t::reports_wait_for_the_host() {
    tell_both();
    enter("alice", "phone");
    gate->tick();
    QCOMPARE(port.sent.size(), 1u);
    enter("alice", "tablet", 1);
    gate->tick();
    QCOMPARE(port.sent.size(), 1u);
    // The host connects anew: what it did not acknowledge comes first.
    leave(900);
    enter_host("host-2", 901);
    gate->control(objects + 901, "change 6\nend\n");
    QCOMPARE(port.sent.size(), 3u);
    QCOMPARE(port.sent[1].id, std::string("host-2"));
    QCOMPARE(port.sent[1].text, port.sent[0].text);
    gate->control(objects + 901, "seen 1\nend\n");
    gate->tick();
    QVERIFY(port.sent.back().text.starts_with("report 2\nevent signed-in 1 77 77 alice tablet"));
}

void tst_gate_t::reload_lets_everybody_stay_until_the_next_tick() {
    tell_both();
    enter("alice", "phone");
    enter("bob", "tablet", 1, false);
    port.kept.insert("tablet");
    leave(1);
    tell("change", {"remove bob", "remove alice"});
    gate->reload();
    QVERIFY(enter("alice", "phone") == entry_t::open);
    QVERIFY(enter("bob", "tablet", 1) == entry_t::open);
    gate->tick();
    QVERIFY(enter("alice", "phone") == entry_t::refused);
    QVERIFY(enter("bob", "tablet", 1) == entry_t::refused);
}

void tst_gate_t::reload_lets_no_stranger_in() {
    tell_both();
    enter("alice", "phone", 0, false);
    port.kept.insert("phone");
    leave(0);
    gate->reload();
    sign_in_t stranger = sign_in_of("alice", "phone", 7);
    stranger.password = "wrong";
    QVERIFY(gate->sign_in(stranger) == entry_t::refused);
    // A new connection whose object has the address of one that is gone.
    stranger.client = objects;
    stranger.websockets = true;
    QVERIFY(gate->sign_in(stranger) == entry_t::refused);
}

void tst_gate_t::last_will_is_judged_after_the_end() {
    tell_both();
    enter("alice", "phone");
    gate->departed(objects);
    QVERIFY(gate->may(objects, access_t::write, own_request, false));
    QVERIFY(!gate->may(objects, access_t::write, own_request, true));
    QVERIFY(!gate->may(objects, access_t::write, own_status, false));
    gate->tick();
    QVERIFY(!gate->may(objects, access_t::write, own_request, false));
}

void tst_gate_t::users_are_closed_without_the_gate_being_confused() {
    tell_both();
    for (int i = 0; i < 20; ++i) {
        enter("alice", "a" + QByteArray::number(i), i);
        enter("bob", "b" + QByteArray::number(i), 100 + i);
    }
    // The broker tells of the ends while it is asked to end them.
    port.on_close = [this](const std::string& _user) {
        for (int i = 0; i < 20; ++i) {
            gate->departed(objects + (_user == "alice" ? 0 : 100) + i);
        }
    };
    tell("all", {});
    gate->tick();
    QCOMPARE(port.closed.size(), 2u);
    for (int i = 0; i < 20; ++i) {
        QVERIFY(!gate->may(objects + i, access_t::write, own_request, false));
    }
}

QTEST_GUILESS_MAIN(tst_gate_t)
#include "tst_gate_t.moc"
