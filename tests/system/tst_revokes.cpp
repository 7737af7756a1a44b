#include <QElapsedTimer>
#include <QtTest>

#include "kit/lamps_home.h"
#include "system/support/api_user.h"
#include "system/support/item_storm_t.h"

using namespace kit;
using namespace support;

namespace {

constexpr int element_count = 100;

#if defined(NDEBUG)
constexpr int limit_ms = 1'000;
#else
constexpr int limit_ms = 5'000;  // and with sanitizers; less than the drivers' 10 s
#endif

}  // namespace

/// Withdrawn rights end within a second, whatever else changes.
class tst_revokes : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void all_grants_withdrawn_end_reads_writes_and_pushes_data() { calm_and_storm(); }
    void all_grants_withdrawn_end_reads_writes_and_pushes();
    void states_are_pushed_while_bulk_changes_go_on();
    void what_was_retained_goes_within_the_drivers_debounce_data() { calm_and_storm(); }
    void what_was_retained_goes_within_the_drivers_debounce();
    void grants_of_one_leave_the_states_of_others_alone();
    void a_name_given_away_shows_nothing_of_the_former_owner_s();

 private:
    static void calm_and_storm() {
        QTest::addColumn<bool>("storm");
        QTest::newRow("calm") << false;
        QTest::newRow("storm") << true;
    }
    QString file() const { return host->data() + "/installation.db"; }
    std::unique_ptr<item_storm_t> begin(bool _storm) const {
        return _storm ? std::make_unique<item_storm_t>(file()) : nullptr;
    }
    /// The retained states that a new subscription of this user meets.
    int retained(const QString& _user) const;

    std::unique_ptr<host_process_t> host;
};

void tst_revokes::init() {
    host = std::make_unique<host_process_t>();
    QVERIFY2(host->import(lamps_home(element_count, element_count, {"alice", "bob"})),
             qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
}

int tst_revokes::retained(const QString& _user) const {
    mqtt_client_t client;
    if (!join(client, *host, _user)) {
        return -1;
    }
    client.request(request_topic(_user, "get"));
    const auto messages = client.messages();
    return int(std::count_if(messages.begin(), messages.end(),
                             [](const auto& _message) { return _message.retained; }));
}

void tst_revokes::all_grants_withdrawn_end_reads_writes_and_pushes() {
    QFETCH(bool, storm);
    mqtt_client_t bob;
    QVERIFY(join(bob, *host, "bob"));
    QVERIFY(bob.request(request_topic("bob", "get")).contains("data"));
    const auto running = begin(storm);
    const database_shell_t shell(file());
    QElapsedTimer clock;
    QVERIFY(shell.run("DELETE FROM permissions WHERE user = 'u-bob'"));
    clock.start();
    QTRY_COMPARE_WITH_TIMEOUT(bob.request(request_topic("bob", "get"))["data"].toObject(),
                              QJsonObject(), limit_ms);
    qInfo("reads end after %lld ms", clock.elapsed());
    QCOMPARE(bob.request(request_topic("bob", "set", "e-5"),
                         write_payload("execute", 1))["data"]["error"],
             QJsonValue(401));
    // What was on its way is there behind the next answer.
    bob.request(request_topic("bob", "get"));
    bob.forget();
    mqtt_client_t alice;
    QVERIFY(join(alice, *host, "alice"));
    alice.request(request_topic("alice", "set", "e-5"), write_payload("execute", 77));
    bob.request(request_topic("bob", "get"));
    for (const auto& message : bob.messages()) {
        QVERIFY2(!message.topic.startsWith(state_topic("bob", {})) || message.payload.isEmpty(),
                 message.payload.constData());
    }
}

void tst_revokes::states_are_pushed_while_bulk_changes_go_on() {
    mqtt_client_t alice;
    QVERIFY(join(alice, *host, "alice"));
    alice.request(request_topic("alice", "get"));
    alice.forget();
    const item_storm_t storm(file());
    for (int i = 0; i < 3; ++i) {
        QVERIFY(alice.wait_for(
            [](const mqtt_client_t::message_t& _message) {
                return _message.topic.startsWith(state_topic("alice", {})) && !_message.retained;
            },
            limit_ms));
        alice.forget();
    }
}

void tst_revokes::what_was_retained_goes_within_the_drivers_debounce() {
    QFETCH(bool, storm);
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), element_count, 20'000);
    const auto running = begin(storm);
    const database_shell_t shell(file());
    // A change of access starts the drivers' debounce; what follows within it deletes nothing.
    QVERIFY(shell.run("DELETE FROM permissions WHERE user = 'u-bob' AND element = 'e-1'"));
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), element_count - 1, limit_ms);
    QVERIFY(shell.run("UPDATE permissions SET bits = 2 WHERE user = 'u-bob' AND element = 'e-2'"));
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), element_count - 2, limit_ms);
    QVERIFY(shell.run("DELETE FROM permissions WHERE user = 'u-bob'"));
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), 0, limit_ms);
}

void tst_revokes::grants_of_one_leave_the_states_of_others_alone() {
    mqtt_client_t alice;
    QVERIFY(join(alice, *host, "alice"));
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), element_count, 20'000);
    alice.request(request_topic("alice", "get"));
    alice.forget();
    const database_shell_t shell(file());
    QVERIFY(shell.run("DELETE FROM permissions WHERE user = 'u-bob' AND element < 'e-2'"));
    const int withdrawn = 12;  // e-0, e-1, e-10 to e-19
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), element_count - withdrawn, limit_ms);
    alice.request(request_topic("alice", "get"));
    int pushed = 0;
    for (const auto& message : alice.messages()) {
        if (message.topic.startsWith(state_topic("alice", {}))) {
            QVERIFY2(!message.payload.isEmpty(), qPrintable(message.topic));
            ++pushed;
        }
    }
    // The elements whose grants changed may be told again, no others.
    QVERIFY2(pushed <= withdrawn, qPrintable(QString::number(pushed)));
}

void tst_revokes::a_name_given_away_shows_nothing_of_the_former_owner_s() {
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), element_count, 20'000);
    QCOMPARE(host->control({"user", "remove", "bob"}), 0);
    QCOMPARE(host->control({"user", "add", "bob"}, password_of("bob").toUtf8() + '\n'), 0);
    QTRY_COMPARE_WITH_TIMEOUT(retained("bob"), 0, limit_ms);
}

QTEST_GUILESS_MAIN(tst_revokes)
#include "tst_revokes.moc"
