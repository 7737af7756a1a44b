#include <signal.h>

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include "kit/mqtt_client_t.h"
#include "kit/real_broker_t.h"

using namespace kit;

namespace {

/// Blocks, without handling events, until the broker hangs up on a ping out of order.
bool serves(quint16 _port) {
    QDeadlineTimer limit(5'000);
    QTcpSocket socket;
    do {
        socket.connectToHost(QHostAddress(QHostAddress::LocalHost), _port);
    } while (!socket.waitForConnected(100) && !limit.hasExpired());
    socket.write(QByteArray::fromHex("c000"));
    return socket.waitForDisconnected(5'000);
}

}  // namespace

/// Changed accounts of a running broker.
class tst_broker_process_accounts : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void removed_user_is_thrown_out();
    void user_with_a_new_password_is_thrown_out();
    void others_stay_connected();
    void new_user_gets_in();
    void change_during_the_start_counts();
    void change_survives_a_restart();
    void bad_account_does_not_keep_others_in();
    void change_without_a_broker_is_told();

 private:
    bool enters(const QString& _name, const QString& _password) {
        mqtt_client_t user;
        return user.sign_in(broker->settings.port, _name, _password) == 0;
    }

    std::unique_ptr<real_broker_t> broker;
    std::unique_ptr<mqtt_client_t> alice;
    std::unique_ptr<mqtt_client_t> bob;
};

void tst_broker_process_accounts::init() {
    broker = std::make_unique<real_broker_t>();
    QCOMPARE(broker->start(), QString());
    alice = std::make_unique<mqtt_client_t>();
    bob = std::make_unique<mqtt_client_t>();
    QCOMPARE(alice->sign_in(broker->settings.port, "alice", "alice-password"), 0);
    QCOMPARE(bob->sign_in(broker->settings.port, "bob", "bob-password"), 0);
}

void tst_broker_process_accounts::cleanup() {
    alice.reset();
    bob.reset();
    broker.reset();
}

void tst_broker_process_accounts::removed_user_is_thrown_out() {
    QVERIFY(broker->process.set_accounts({real_broker_t::account("alice")}).is_ok());
    QTRY_VERIFY(!bob->is_connected());
    QVERIFY(!enters("bob", "bob-password"));
    QVERIFY(enters("alice", "alice-password"));
}

void tst_broker_process_accounts::user_with_a_new_password_is_thrown_out() {
    QVERIFY(
        broker->process
            .set_accounts({real_broker_t::account("alice"), real_broker_t::account("bob", "other")})
            .is_ok());
    QTRY_VERIFY(!bob->is_connected());
    QVERIFY(!enters("bob", "bob-password"));
    QVERIFY(enters("bob", "other"));
}

void tst_broker_process_accounts::others_stay_connected() {
    mqtt_client_t host;
    QCOMPARE(broker->let_host_in(&host), 0);
    QVERIFY(broker->process.set_accounts({real_broker_t::account("alice")}).is_ok());
    QTRY_VERIFY(!bob->is_connected());
    QCOMPARE(alice->publish("local/api/v1/alice/phone/request/x", "{}"), 0);
    QCOMPARE(host.publish("x", "{}"), 0);
    QVERIFY(alice->is_connected() && host.is_connected());
}

void tst_broker_process_accounts::new_user_gets_in() {
    auto accounts = real_broker_t::both();
    accounts.append(real_broker_t::account("carol"));
    QVERIFY(!enters("carol", "carol-password"));
    QVERIFY(broker->process.set_accounts(accounts).is_ok());
    QTRY_VERIFY(enters("carol", "carol-password"));
}

void tst_broker_process_accounts::change_during_the_start_counts() {
    real_broker_t other;
    QVERIFY(other.process.start(real_broker_t::both()).is_ok());
    QVERIFY(serves(other.settings.port));  // it has read its files, and this end has not noticed
    QVERIFY(!other.process.is_listening());
    QVERIFY(other.process.set_accounts({real_broker_t::account("carol")}).is_ok());
    QCOMPARE(other.process.wait_until_listening().error, QString());
    const qint64 process = other.process.process_id();
    const auto may_enter = [&other](const QString& _name) {
        mqtt_client_t user;
        return user.sign_in(other.settings.port, _name, password_of(_name)) == 0;
    };
    QTRY_VERIFY(may_enter("carol"));
    QVERIFY(!may_enter("alice"));
    QCOMPARE(other.process.process_id(), process);
}

void tst_broker_process_accounts::change_survives_a_restart() {
    QVERIFY(broker->process.set_accounts({real_broker_t::account("alice")}).is_ok());
    QSignalSpy listening(&broker->process, &broker::broker_process_t::listening);
    ::kill(pid_t(broker->process.process_id()), SIGKILL);
    QVERIFY(listening.wait());
    QVERIFY(enters("alice", "alice-password"));
    QVERIFY(!enters("bob", "bob-password"));
}

void tst_broker_process_accounts::bad_account_does_not_keep_others_in() {
    QVERIFY(broker->process.set_accounts({{"alice", "secret"}}).is_ok());
    QTRY_VERIFY(!bob->is_connected());
    QVERIFY(!enters("bob", "bob-password"));
    QVERIFY(!enters("alice", "secret"));
}

void tst_broker_process_accounts::change_without_a_broker_is_told() {
    broker->process.stop();
    QCOMPARE(broker->process.set_accounts({}).error, QString("The MQTT broker is not running."));
}

QTEST_GUILESS_MAIN(tst_broker_process_accounts)
#include "tst_broker_process_accounts.moc"
