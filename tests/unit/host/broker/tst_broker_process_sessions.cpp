#include <QSignalSpy>
#include <QTest>

#include "kit/raw_mqtt_t.h"
#include "kit/real_broker_t.h"

using namespace kit;
using broker::broker_process_t;

/// What the broker keeps for clients that are not there, while users come and go.
class tst_broker_process_sessions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void init() { start({}); }
    void cleanup() { broker.reset(); }
    void removing_a_user_with_offline_sessions_leaves_the_broker_alive_data();
    void removing_a_user_with_offline_sessions_leaves_the_broker_alive();
    void what_was_queued_before_a_withdrawal_is_not_delivered();
    void who_has_the_name_again_finds_nothing();
    void another_password_ends_the_former_sessions();
    void idle_session_is_deleted();
    void nothing_stays_of_retained_requests();
    void stranger_in_a_shared_group_takes_nothing_away();

 private:
    using accounts_t = QList<accounts::broker_account_t>;

    void start(std::chrono::seconds _idle);
    void set(const accounts_t& _accounts, const QSet<QString>& _withdrawn = {});
    std::unique_ptr<raw_mqtt_t> enter(const raw_connect_t& _as, int* _code) const;
    /// Comes back to alice's session; until the host has deleted the former one it is not answered.
    std::unique_ptr<raw_mqtt_t> resume() const;
    void leave_session() const;
    /// Until the broker has sent bob's delayed last will.
    bool pass_seconds(quint32 _count);

    const raw_connect_t kept{.name = "alice",
                             .password = "alice-password",
                             .id = "kept",
                             .clean = false,
                             .expiry = 1'000};
    std::unique_ptr<real_broker_t> broker;
    std::unique_ptr<mqtt_client_t> host;
    int clocks = 0;
};

void tst_broker_process_sessions::initTestCase() {
    // What is used after it was freed shows.
    qputenv("MALLOC_PERTURB_", "170");
}

void tst_broker_process_sessions::start(std::chrono::seconds _idle) {
    host.reset();
    auto settings = real_broker_t::make_settings();
    settings.session_idle = _idle.count() > 0 ? _idle : settings.session_idle;
    broker = std::make_unique<real_broker_t>(settings);
    QCOMPARE(broker->start(), QString());
    host = std::make_unique<mqtt_client_t>();
    QCOMPARE(broker->let_host_in(host.get()), 0);
}

void tst_broker_process_sessions::set(const accounts_t& _accounts,
                                      const QSet<QString>& _withdrawn) {
    QSignalSpy effective(&broker->process, &broker_process_t::effective);
    QVERIFY(broker->process.set_accounts(_accounts, _withdrawn).is_ok());
    QVERIFY(!effective.isEmpty() || effective.wait());
}

std::unique_ptr<raw_mqtt_t> tst_broker_process_sessions::enter(const raw_connect_t& _as,
                                                               int* _code) const {
    auto client = std::make_unique<raw_mqtt_t>(raw_mqtt_t::way_t::tcp,
                                               QString::number(broker->settings.port));
    *_code = client->connect(_as);
    return client;
}

bool tst_broker_process_sessions::pass_seconds(quint32 _count) {
    int code = -1;
    const auto bob = enter({.name = "bob",
                            .password = "bob-password",
                            .id = "clock" + QByteArray::number(++clocks),
                            .expiry = 1'000,
                            .will = {.topic = "local/api/v1/bob/me/request/now", .delay = _count}},
                           &code);
    bob->vanish();
    host->forget();
    return code == 0 && host->subscribe("local/api/v1/bob/me/request/now") &&
           host->heard("local/api/v1/bob/me/request/now") == "will";
}

std::unique_ptr<raw_mqtt_t> tst_broker_process_sessions::resume() const {
    std::unique_ptr<raw_mqtt_t> client;
    const auto answered = [this, &client]() {
        int code = -1;
        client = enter(kept, &code);
        return code == 0;
    };
    return QTest::qWaitFor(answered, 10'000) ? std::move(client) : nullptr;
}

void tst_broker_process_sessions::leave_session() const {
    int code = -1;
    const auto alice = enter(kept, &code);
    QCOMPARE(code, 0);
    QCOMPARE(alice->subscribe("local/api/v1/alice/#"), 1);
    alice->disconnect();
    QCOMPARE(host->publish("local/api/v1/alice/status/e-1", "queued"), 0);
}

void tst_broker_process_sessions::
    removing_a_user_with_offline_sessions_leaves_the_broker_alive_data() {
    QTest::addColumn<bool>("removed");
    QTest::newRow("removed") << true;
    QTest::newRow("another password") << false;
}

void tst_broker_process_sessions::removing_a_user_with_offline_sessions_leaves_the_broker_alive() {
    QFETCH(bool, removed);
    const qint64 process = broker->process.process_id();
    for (int round = 0; round < 4; ++round) {
        set(real_broker_t::both());
        for (int i = 0; i < 8; ++i) {
            raw_connect_t as = kept;
            as.id = "s" + QByteArray::number(8 * round + i);
            as.expiry = quint32(1 + i % 3);
            as.will.topic = "local/api/v1/alice/phone/request/x";
            as.will.delay = quint32(1 + i % 2);
            int code = -1;
            const auto alice = enter(as, &code);
            QCOMPARE(code, 0);
            alice->subscribe("local/api/v1/alice/#");
            alice->vanish();
        }
        accounts_t left{real_broker_t::account("bob")};
        if (!removed) {
            left.append(real_broker_t::account("alice", QString::number(round)));
        }
        set(left);
    }
    // All of them would have expired, and their last wills were due.
    set(real_broker_t::both());
    QVERIFY(pass_seconds(5));
    QCOMPARE(broker->process.process_id(), process);
    const auto alice = resume();
    QVERIFY(alice && !alice->had_session());
}

void tst_broker_process_sessions::what_was_queued_before_a_withdrawal_is_not_delivered() {
    leave_session();
    set(real_broker_t::both(), {"alice"});
    const auto alice = resume();
    QVERIFY(alice && !alice->had_session());
    QVERIFY(alice->received().isEmpty());
}

void tst_broker_process_sessions::who_has_the_name_again_finds_nothing() {
    leave_session();
    set({real_broker_t::account("bob")});
    set(real_broker_t::both());
    const auto alice = resume();
    QVERIFY(alice && !alice->had_session());
    QVERIFY(alice->received().isEmpty());
}

void tst_broker_process_sessions::another_password_ends_the_former_sessions() {
    leave_session();
    set({real_broker_t::account("alice", "other")});
    set(real_broker_t::both());
    const auto alice = resume();
    QVERIFY(alice && !alice->had_session());
}

void tst_broker_process_sessions::idle_session_is_deleted() {
    leave_session();
    QVERIFY(pass_seconds(3));
    QVERIFY(resume()->had_session());
    start(std::chrono::seconds(3));
    leave_session();
    for (int i = 0; i < 4; ++i) {
        QVERIFY(pass_seconds(1));  // bob's own session must not be idle as long
    }
    QVERIFY(!resume()->had_session());
}

void tst_broker_process_sessions::nothing_stays_of_retained_requests() {
    constexpr int not_authorized = 135;
    mqtt_client_t alice;
    QCOMPARE(alice.sign_in(broker->settings.port, "alice", "alice-password"), 0);
    for (int i = 0; i < 100; ++i) {
        const QString topic = QStringLiteral("local/api/v1/alice/me/request/%1").arg(i);
        QCOMPARE(alice.publish(topic, "{}", true), not_authorized);
    }
    QCOMPARE(host->publish("fence", "{}", true), 0);
    QVERIFY(host->subscribe("#"));
    QCOMPARE(host->heard("fence"), QByteArray("{}"));
    QCOMPARE(host->messages().size(), 1);
}

void tst_broker_process_sessions::stranger_in_a_shared_group_takes_nothing_away() {
    int code = -1;
    const auto alice = enter({.name = "alice", .password = "alice-password", .id = "a"}, &code);
    QCOMPARE(code, 0);
    const auto bob = enter({.name = "bob", .password = "bob-password", .id = "b"}, &code);
    QCOMPARE(code, 0);
    QCOMPARE(alice->subscribe("$share/g/local/api/v1/alice/#"), 1);
    QVERIFY(bob->subscribe("$share/g/local/api/v1/alice/#") >= 128);
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(host->publish("local/api/v1/alice/status/e-1", QByteArray::number(i)), 0);
    }
    QCOMPARE(alice->payloads_until("local/api/v1/alice/status/e-1", "49").size(), 49);
}

QTEST_GUILESS_MAIN(tst_broker_process_sessions)
#include "tst_broker_process_sessions.moc"
