#include <signal.h>

#include <QDeadlineTimer>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTest>

#include "unit/host/broker/mqtt_user_t.h"
#include "unit/host/broker/real_broker_t.h"

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
        mqtt_user_t user;
        return user.enter(broker->settings.port, _name, _password);
    }

    std::unique_ptr<real_broker_t> broker;
    std::unique_ptr<mqtt_user_t> alice;
    std::unique_ptr<mqtt_user_t> bob;
};

void tst_broker_process_accounts::init() {
    broker = std::make_unique<real_broker_t>();
    QCOMPARE(broker->start(), QString());
    alice = std::make_unique<mqtt_user_t>();
    bob = std::make_unique<mqtt_user_t>();
    QVERIFY(alice->enter(broker->settings.port, "alice", "alice-pw"));
    QVERIFY(bob->enter(broker->settings.port, "bob", "bob-pw"));
}

void tst_broker_process_accounts::cleanup() {
    alice.reset();
    bob.reset();
    broker.reset();
}

void tst_broker_process_accounts::removed_user_is_thrown_out() {
    QVERIFY(broker->process.set_accounts({real_broker_t::account("alice")}).is_ok());
    QTRY_VERIFY(bob->closed);
    QVERIFY(!enters("bob", "bob-pw"));
    QVERIFY(enters("alice", "alice-pw"));
}

void tst_broker_process_accounts::user_with_a_new_password_is_thrown_out() {
    QVERIFY(
        broker->process
            .set_accounts({real_broker_t::account("alice"), real_broker_t::account("bob", "other")})
            .is_ok());
    QTRY_VERIFY(bob->closed);
    QVERIFY(!enters("bob", "bob-pw"));
    QVERIFY(enters("bob", "other"));
}

void tst_broker_process_accounts::others_stay_connected() {
    mqtt_user_t host;
    QVERIFY(host.enter(broker->settings.port, "@torlan", broker->process.host_password()));
    QVERIFY(broker->process.set_accounts({real_broker_t::account("alice")}).is_ok());
    QTRY_VERIFY(bob->closed);
    QVERIFY(alice->publish("local/api/v1/alice/phone/request/x", "{}"));
    QVERIFY(host.publish("x", "{}"));
    QVERIFY(!alice->closed && !host.closed);
}

void tst_broker_process_accounts::new_user_gets_in() {
    auto accounts = real_broker_t::both();
    accounts.append(real_broker_t::account("carol"));
    QVERIFY(!enters("carol", "carol-pw"));
    QVERIFY(broker->process.set_accounts(accounts).is_ok());
    QTRY_VERIFY(enters("carol", "carol-pw"));
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
        mqtt_user_t user;
        return user.enter(other.settings.port, _name, _name + "-pw");
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
    QVERIFY(enters("alice", "alice-pw"));
    QVERIFY(!enters("bob", "bob-pw"));
}

void tst_broker_process_accounts::bad_account_does_not_keep_others_in() {
    QVERIFY(broker->process.set_accounts({{"alice", "secret"}}).is_ok());
    QTRY_VERIFY(bob->closed);
    QVERIFY(!enters("bob", "bob-pw"));
    QVERIFY(!enters("alice", "secret"));
}

void tst_broker_process_accounts::change_without_a_broker_is_told() {
    broker->process.stop();
    QCOMPARE(broker->process.set_accounts({}).error, QString("The MQTT broker is not running."));
}

QTEST_GUILESS_MAIN(tst_broker_process_accounts)
#include "tst_broker_process_accounts.moc"
