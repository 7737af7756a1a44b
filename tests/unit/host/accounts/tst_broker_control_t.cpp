#include "accounts/broker_control_t.h"

#include <signal.h>

#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTest>

#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace kit;

using accounts::broker_account_t;
using accounts::broker_control_t;

namespace {

constexpr int refused = 0x87;
constexpr int unanswered = raw_mqtt_t::closed;

broker_account_t account(const QByteArray& _name, const QByteArray& _password = {},
                         const QString& _id = {}) {
    return {
        QString::fromLatin1(_name),
        QString::fromLatin1(plugin_broker_t::hash(_password.isNull() ? _name + "-pw" : _password)),
        _id};
}

}  // namespace

/// The host's word to the real broker.
class tst_broker_control_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void nobody_comes_in_before_the_users_are_told();
    void accounts_are_in_force_when_it_says_so();
    void change_while_another_one_is_under_way();
    void change_of_nothing_is_in_force_at_once();
    void recreated_user_is_somebody_else();
    void withdrawal_deletes_sessions();
    void what_happened_while_away_is_told_later();
    void broker_started_again_is_told_everything();
    void bad_row_is_told_and_the_others_count();
    void events_are_told_once();
    void password_is_sent_to_the_broker_only();
    void broker_that_does_not_answer_is_lost();
    void broker_with_nothing_to_say_is_asked();
    void broker_that_stops_answering_is_lost();

 private:
    bool open();
    bool set(const QList<broker_account_t>& _accounts, const QSet<QString>& _withdrawn = {});
    int code_of(const raw_connect_t& _as) const;
    raw_connect_t session() const;
    /// Comes back to session(), which is answered when the host has deleted the former one.
    std::unique_ptr<raw_mqtt_t> resume() const;

    std::unique_ptr<plugin_broker_t> real;
    std::unique_ptr<broker_control_t> control;
    broker_control_t::settings_t settings;
};

void tst_broker_control_t::init() {
    real = std::make_unique<plugin_broker_t>("plugin_opt_at_once_ms 1000");
    QVERIFY(real->connect_host());
    real->host.reset();
    settings.socket = real->path;
    settings.account = QStringLiteral("@torlan");
    settings.password = QString::fromLatin1(plugin_broker_t::host_password);
    settings.connection_topic = QStringLiteral("home/1/connection");
    control = std::make_unique<broker_control_t>();
}

void tst_broker_control_t::cleanup() {
    control.reset();
    real.reset();
}

bool tst_broker_control_t::open() {
    QSignalSpy effective(control.get(), &broker_control_t::effective);
    settings.process = real->process.processId();
    control->open(settings);
    return effective.wait();
}

bool tst_broker_control_t::set(const QList<broker_account_t>& _accounts,
                               const QSet<QString>& _withdrawn) {
    QSignalSpy effective(control.get(), &broker_control_t::effective);
    control->set_accounts(_accounts, _withdrawn);
    return !effective.isEmpty() || effective.wait();
}

int tst_broker_control_t::code_of(const raw_connect_t& _as) const {
    int code = 0;
    real->enter(_as, &code);
    return code;
}

raw_connect_t tst_broker_control_t::session() const {
    return {.name = "alice", .id = "kept", .clean = false, .expiry = 1'000};
}

std::unique_ptr<raw_mqtt_t> tst_broker_control_t::resume() const {
    std::unique_ptr<raw_mqtt_t> client;
    const auto answered = [this, &client]() {
        int code = 0;
        client = real->enter(session(), &code);
        return code == 0;
    };
    return QTest::qWaitFor(answered, 10'000) ? std::move(client) : nullptr;
}

void tst_broker_control_t::nobody_comes_in_before_the_users_are_told() {
    control->set_accounts({account("alice")});
    QVERIFY(!control->is_effective());
    QCOMPARE(code_of({.name = "alice"}), unanswered);
    QVERIFY(open());
    QVERIFY(control->is_effective());
    QCOMPARE(code_of({.name = "alice"}), 0);
    const auto alice = real->enter({.name = "alice"});
    QCOMPARE(alice->subscribe("home/1/connection"), 1);
}

void tst_broker_control_t::accounts_are_in_force_when_it_says_so() {
    QVERIFY(open());
    QVERIFY(set({account("alice"), account("bob")}));
    QCOMPARE(code_of({.name = "bob"}), 0);
    const auto alice = real->enter({.name = "alice", .id = "a"});
    const auto bob = real->enter({.name = "bob", .id = "b"});
    QVERIFY(set({account("alice"), account("carol")}));
    QCOMPARE(code_of({.name = "bob"}), refused);
    QVERIFY(bob->is_closed());
    QVERIFY(alice->is_alive());
    QVERIFY(set({account("alice", "other"), account("carol")}));
    QVERIFY(alice->is_closed());
    QCOMPARE(code_of({.name = "alice"}), refused);
    QCOMPARE(code_of({.name = "alice", .password = "other"}), 0);
}

void tst_broker_control_t::change_while_another_one_is_under_way() {
    QVERIFY(open());
    QSignalSpy effective(control.get(), &broker_control_t::effective);
    for (int i = 0; i < 20; ++i) {
        control->set_accounts({account("alice", QByteArray::number(i))});
        QVERIFY(!control->is_effective());
    }
    QTRY_VERIFY(control->is_effective());
    QCOMPARE(code_of({.name = "alice", .password = "19"}), 0);
    QVERIFY(effective.size() >= 1 && effective.size() <= 20);
}

void tst_broker_control_t::change_of_nothing_is_in_force_at_once() {
    QVERIFY(open());
    QVERIFY(set({account("alice")}));
    QSignalSpy effective(control.get(), &broker_control_t::effective);
    control->set_accounts({account("alice")});
    QCOMPARE(effective.size(), 1);
}

void tst_broker_control_t::recreated_user_is_somebody_else() {
    QVERIFY(open());
    QVERIFY(set({account("alice", {}, "u-1"), account("bob", {}, "u-2")}));
    const auto alice = real->enter({.name = "alice", .id = "a"});
    const auto bob = real->enter({.name = "bob", .id = "b"});
    QVERIFY(set({account("alice", {}, "u-3"), account("bob", {}, "u-2")}));
    QVERIFY(alice->is_closed());
    QVERIFY(bob->is_alive());
    QCOMPARE(code_of({.name = "alice"}), 0);
}

void tst_broker_control_t::withdrawal_deletes_sessions() {
    QVERIFY(open());
    QVERIFY(set({account("alice")}));
    real->enter(session())->subscribe("local/api/v1/alice/#");
    QVERIFY(real->enter(session())->had_session());
    QVERIFY(set({account("alice")}, {"alice"}));
    const auto alice = resume();
    QVERIFY(alice && !alice->had_session());
}

void tst_broker_control_t::what_happened_while_away_is_told_later() {
    QVERIFY(open());
    QVERIFY(set({account("alice", {}, "u-1"), account("bob", {}, "u-2")}));
    real->enter(session())->subscribe("local/api/v1/alice/#");
    const auto bob = real->enter({.name = "bob", .id = "b"});
    control->close();
    // Alice lost something, bob was removed and another bob came.
    control->set_accounts({account("alice", {}, "u-1")}, {"alice"});
    control->set_accounts({account("alice", {}, "u-1"), account("bob", {}, "u-3")});
    QVERIFY(bob->is_alive());
    QVERIFY(open());
    QVERIFY(bob->is_closed());
    const auto alice = resume();
    QVERIFY(alice && !alice->had_session());
}

void tst_broker_control_t::broker_started_again_is_told_everything() {
    QVERIFY(open());
    QVERIFY(set({account("alice")}));
    QSignalSpy lost(control.get(), &broker_control_t::lost);
    ::kill(pid_t(real->process.processId()), SIGKILL);
    QVERIFY(lost.wait());
    QVERIFY(!control->is_effective());
    control->set_accounts({account("alice"), account("bob")});
    real->process.waitForFinished();
    real->process.start(real->process.program(), real->process.arguments());
    QVERIFY(real->process.waitForStarted());
    QVERIFY(real->connect_host());
    QVERIFY(open());
    QCOMPARE(code_of({.name = "alice"}), 0);
    QCOMPARE(code_of({.name = "bob"}), 0);
}

void tst_broker_control_t::bad_row_is_told_and_the_others_count() {
    QVERIFY(open());
    QSignalSpy left_out(control.get(), &broker_control_t::left_out);
    QVERIFY(set({{"alice", "clear-text", {}}, account("bob")}));
    QCOMPARE(left_out.size(), 1);
    QVERIFY(left_out[0][0].toString().contains("alice's password hash"));
    QCOMPARE(code_of({.name = "bob"}), 0);
}

void tst_broker_control_t::events_are_told_once() {
    QVERIFY(open());
    QVERIFY(set({account("alice")}));
    QSignalSpy happened(control.get(), &broker_control_t::happened);
    code_of({.name = "alice", .password = "wrong", .id = "x"});
    QTRY_COMPARE(happened.size(), 1);
    const auto event = happened[0][0].value<accounts::broker_event_t>();
    QCOMPARE(event.kind, QString("failed"));
    QCOMPARE(event.user, QString("alice"));
    QCOMPARE(event.count, 1);
    code_of({.name = "alice", .id = "y"});
    QTRY_COMPARE(happened.size(), 3);
}

void tst_broker_control_t::password_is_sent_to_the_broker_only() {
    const QTemporaryDir folder;
    QLocalServer thief;
    QVERIFY(thief.listen(folder.filePath("socket")));
    settings.socket = folder.filePath("socket");
    QSignalSpy lost(control.get(), &broker_control_t::lost);
    settings.process = real->process.processId();
    control->open(settings);
    QCOMPARE(lost.size(), 1);
    QVERIFY(thief.waitForNewConnection(5'000));
    const std::unique_ptr<QLocalSocket> connection(thief.nextPendingConnection());
    QVERIFY(connection->waitForDisconnected(5'000) ||
            connection->state() == QLocalSocket::UnconnectedState);
    QCOMPARE(connection->readAll(), QByteArray());
    QVERIFY(!thief.waitForNewConnection(0));
}

void tst_broker_control_t::broker_that_does_not_answer_is_lost() {
    settings.answer_timeout = std::chrono::milliseconds(300);
    QVERIFY(open());
    ::kill(pid_t(real->process.processId()), SIGSTOP);
    QSignalSpy lost(control.get(), &broker_control_t::lost);
    control->set_accounts({account("alice")});
    QVERIFY(lost.wait());
    QVERIFY(!control->is_effective());
    ::kill(pid_t(real->process.processId()), SIGCONT);
    QVERIFY(open());
    QCOMPARE(code_of({.name = "alice"}), 0);
}

void tst_broker_control_t::broker_with_nothing_to_say_is_asked() {
    settings.answer_timeout = std::chrono::milliseconds(500);
    QVERIFY(open());
    QSignalSpy heard(control.get(), &broker_control_t::heard);
    QSignalSpy effective(control.get(), &broker_control_t::effective);
    QSignalSpy lost(control.get(), &broker_control_t::lost);
    QTRY_VERIFY(heard.size() >= 3);
    QVERIFY(effective.isEmpty() && lost.isEmpty());
    QVERIFY(control->is_effective());
    QVERIFY(set({account("alice")}));  // it still counts what it is told
    QCOMPARE(code_of({.name = "alice"}), 0);
}

void tst_broker_control_t::broker_that_stops_answering_is_lost() {
    settings.answer_timeout = std::chrono::milliseconds(200);
    QVERIFY(open());
    QSignalSpy lost(control.get(), &broker_control_t::lost);
    ::kill(pid_t(real->process.processId()), SIGSTOP);
    QVERIFY(lost.wait());
    QVERIFY(!control->is_effective());
    ::kill(pid_t(real->process.processId()), SIGCONT);
}

QTEST_GUILESS_MAIN(tst_broker_control_t)
#include "tst_broker_control_t.moc"
