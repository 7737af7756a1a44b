#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace kit;

using way_t = raw_mqtt_t::way_t;
Q_DECLARE_METATYPE(raw_mqtt_t::way_t)

namespace {

const QByteArray own_tree = "local/api/v1/alice/#";
const QByteArray own_status = "local/api/v1/alice/status/e-1";

}  // namespace

/// What the real broker keeps for clients that are not there.
class tst_plugin_sessions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void kept_session_delivers_what_was_queued_data() { add_versions(); }
    void kept_session_delivers_what_was_queued();
    void queued_messages_are_not_delivered_after_data();
    void queued_messages_are_not_delivered_after();
    void new_messages_arrive_after_the_deletion_data() { add_versions(); }
    void new_messages_arrive_after_the_deletion();
    void connected_ones_queue_goes_with_its_connection();
    void another_user_inherits_nothing_data() { add_versions(); }
    void another_user_inherits_nothing();
    void oldest_session_of_a_user_goes();
    void clients_without_a_session_push_no_session_out();
    void idle_session_goes();
    void broker_survives_sessions_that_end_in_every_way();

 private:
    void add_versions();
    void start(const QByteArray& _options = {});
    /// A client of alice that has gone and left a session with one message in it.
    void leave_session(int _version, const QByteArray& _id = "a");
    raw_connect_t resume(int _version, const QByteArray& _id = "a") const;
    /// Does what the reports ask for until this session was deleted.
    void delete_until(const QByteArray& _id);
    /// Does what the reports ask for now.
    void delete_all();

    std::unique_ptr<plugin_broker_t> broker;
};

void tst_plugin_sessions::init() {
    // Memory that was given back is overwritten: what is used after that shows.
    qputenv("MALLOC_PERTURB_", "170");
    start("plugin_opt_at_once_ms 1000");
}

void tst_plugin_sessions::start(const QByteArray& _options) {
    broker.reset();
    broker = std::make_unique<plugin_broker_t>(_options);
    QVERIFY(broker->connect_host());
    QCOMPARE(broker->tell_both(), "done 1");
}

void tst_plugin_sessions::cleanup() {
    QVERIFY(broker->is_running());
    broker.reset();
}

void tst_plugin_sessions::add_versions() {
    QTest::addColumn<int>("version");
    QTest::newRow("3.1") << 3;
    QTest::newRow("3.1.1") << 4;
    QTest::newRow("5") << 5;
}

raw_connect_t tst_plugin_sessions::resume(int _version, const QByteArray& _id) const {
    return {.name = "alice",
            .id = _id,
            .version = _version,
            .clean = false,
            .expiry = 1'000,
            .receive_maximum = quint16(_version == 5 ? 5 : 0)};
}

void tst_plugin_sessions::leave_session(int _version, const QByteArray& _id) {
    const auto alice = broker->enter(resume(_version, _id));
    QCOMPARE(alice->subscribe(own_tree), 1);
    alice->disconnect();
    for (int i = 0; i < 10; ++i) {
        broker->host->publish(own_status, "queued");
    }
}

void tst_plugin_sessions::delete_until(const QByteArray& _id) {
    const QByteArray line = "delete " + _id;
    for (const QByteArray& row : broker->reports_until(line + "\n")) {
        if (row.startsWith("delete ")) {
            broker->delete_session(row.mid(7));
        }
    }
}

void tst_plugin_sessions::delete_all() {
    static int number = 0;
    const QByteArray fence = "fence" + QByteArray::number(++number);
    broker->enter({.name = "bob", .id = fence});
    for (const QByteArray& row : broker->reports_until(" bob " + fence)) {
        if (row.startsWith("delete ")) {
            broker->delete_session(row.mid(7));
        }
    }
}

void tst_plugin_sessions::kept_session_delivers_what_was_queued() {
    QFETCH(int, version);
    leave_session(version);
    const auto alice = broker->enter(resume(version));
    QCOMPARE(alice->had_session(), version != 3);  // which has no word for it
    broker->host->publish(own_status, "fence");
    QCOMPARE(alice->payloads_until(own_status, "fence").size(), 10);
}

void tst_plugin_sessions::queued_messages_are_not_delivered_after_data() {
    QTest::addColumn<int>("version");
    QTest::addColumn<QByteArrayList>("rows");
    QTest::addColumn<QByteArray>("password");
    for (const int version : {3, 4, 5}) {
        const auto row = [version](const char* _name, const QByteArrayList& _rows,
                                   const QByteArray& _password) {
            QTest::addRow("%s, %d", _name, version) << version << _rows << _password;
        };
        row("withdrawal", {"withdraw alice"}, "alice-pw");
        row("re-creation", {"remove alice", plugin_broker_t::user("alice")}, "alice-pw");
        row("password", {plugin_broker_t::user("alice", "new")}, "new");
    }
}

void tst_plugin_sessions::queued_messages_are_not_delivered_after() {
    QFETCH(int, version);
    QFETCH(QByteArrayList, rows);
    QFETCH(QByteArray, password);
    leave_session(version);
    QCOMPARE(broker->tell("change", rows), "done 2");
    // At once, before the host has deleted it: not refused, but not let in either.
    raw_connect_t as = resume(version);
    as.password = password;
    int code = 0;
    broker->enter(as, &code);
    QCOMPARE(code, int(raw_mqtt_t::closed));
    delete_until("a");
    const auto alice = broker->enter(as, &code);
    QCOMPARE(code, 0);
    QVERIFY(!alice->had_session());
    alice->subscribe(own_tree);
    broker->host->publish(own_status, "fence");
    QCOMPARE(alice->payloads_until(own_status, "fence"), QList<QByteArray>());
}

void tst_plugin_sessions::new_messages_arrive_after_the_deletion() {
    QFETCH(int, version);
    leave_session(version);
    broker->tell("change", {"withdraw alice"});
    // A clean start needs no deletion by the host.
    raw_connect_t as = resume(version);
    as.clean = true;
    const auto alice = broker->enter(as);
    alice->subscribe(own_tree);
    for (int i = 0; i < 30; ++i) {
        broker->host->publish(own_status, "new");
    }
    broker->host->publish(own_status, "fence");
    QCOMPARE(alice->payloads_until(own_status, "fence"), QList<QByteArray>(30, "new"));
}

void tst_plugin_sessions::connected_ones_queue_goes_with_its_connection() {
    auto alice = broker->enter(resume(5));
    alice->subscribe(own_tree);
    alice->acknowledges = false;
    for (int i = 0; i < 10; ++i) {
        broker->host->publish(own_status, "queued");  // five are sent, five wait
    }
    broker->tell("change", {"withdraw alice"});
    QVERIFY(alice->is_alive());
    alice->vanish();
    delete_until("a");
    alice = broker->enter(resume(5));
    QVERIFY(!alice->had_session());
    QVERIFY(alice->received().isEmpty());
}

void tst_plugin_sessions::another_user_inherits_nothing() {
    QFETCH(int, version);
    leave_session(version);
    raw_connect_t as = resume(version);
    as.name = "bob";
    int code = 0;
    broker->enter(as, &code);
    QCOMPARE(code, int(raw_mqtt_t::closed));
    delete_until("a");
    const auto bob = broker->enter(as, &code);
    QCOMPARE(code, 0);
    QVERIFY(!bob->had_session());
    broker->host->publish(own_status, "x");
    QVERIFY(bob->received().isEmpty());
}

void tst_plugin_sessions::oldest_session_of_a_user_goes() {
    start("plugin_opt_at_once_ms 1000\nplugin_opt_sessions_of_user 3");
    for (int i = 0; i < 4; ++i) {
        leave_session(4 + i % 2, "s" + QByteArray::number(i));
    }
    delete_until("s0");
    for (int i = 1; i < 4; ++i) {
        const QByteArray id = "s" + QByteArray::number(i);
        QVERIFY(broker->enter(resume(4 + i % 2, id))->had_session());
    }
    QVERIFY(!broker->enter(resume(4, "s0"))->had_session());
}

void tst_plugin_sessions::clients_without_a_session_push_no_session_out() {
    start("plugin_opt_at_once_ms 1000\nplugin_opt_sessions_of_user 3");
    leave_session(5, "kept");
    for (int i = 0; i < 20; ++i) {
        // An MQTT 5 client whose session ends with its connection: the plugin is not told.
        const auto alice = broker->enter(
            {.name = "alice", .id = "n" + QByteArray::number(i), .clean = false, .expiry = 0});
        alice->subscribe(own_tree);
        alice->disconnect();
    }
    broker->enter({.name = "bob", .id = "fence"});
    for (const QByteArray& row : broker->reports_until(" bob fence")) {
        QVERIFY2(!row.startsWith("delete"), row.constData());
    }
    QVERIFY(broker->enter(resume(5, "kept"))->had_session());
}

void tst_plugin_sessions::idle_session_goes() {
    start("plugin_opt_at_once_ms 1000\nplugin_opt_idle_seconds 1");
    leave_session(4);
    delete_until("a");
    QVERIFY(!broker->enter(resume(4))->had_session());
}

void tst_plugin_sessions::broker_survives_sessions_that_end_in_every_way() {
    QCOMPARE(broker->host->subscribe("local/api/v1/#"), 1);
    for (int round = 0; round < 4; ++round) {
        const QByteArray tag = QByteArray::number(round);
        const quint32 expiries[] = {1, 1, 2, 3, 100, 1'000};
        for (int i = 0; i < 6; ++i) {
            const auto alice = broker->enter(
                {.name = "alice",
                 .password = "alice-" + tag,
                 .id = "a" + QByteArray::number(i) + (i % 2 == 0 ? QByteArray() : tag),
                 .clean = false,
                 .expiry = expiries[i],
                 .will = {.topic = "local/api/v1/alice/x/request/will", .delay = quint32(i % 3)}},
                nullptr, i % 2 == 0 ? way_t::tcp : way_t::websockets);
            alice->subscribe(own_tree);
            alice->vanish();
        }
        const auto online =
            broker->enter({.name = "alice", .password = "alice-" + tag, .id = "on", .expiry = 100});
        for (int i = 0; i < 20; ++i) {
            broker->host->publish(own_status, QByteArray(2'000, 'x'));
        }
        broker->tell("change",
                     {"remove alice",
                      plugin_broker_t::user("alice", "alice-" + QByteArray::number(round + 1))});
        // Half of the rounds delete at once, the others when some have ended by themselves.
        if (round % 2 == 0) {
            delete_all();
        }
        // Time passes: the will of this one comes when the short ones have ended.
        const auto clock =
            broker->enter({.name = "bob",
                           .id = "clock" + tag,
                           .expiry = 50,
                           .will = {.topic = "local/api/v1/bob/x/request/" + tag, .delay = 2}});
        clock->vanish();
        broker->host->payloads_until("local/api/v1/bob/x/request/" + tag, "will");
        delete_all();
        QVERIFY(broker->is_running());
    }
}

QTEST_GUILESS_MAIN(tst_plugin_sessions)
#include "tst_plugin_sessions.moc"
