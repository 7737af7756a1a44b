#include "accounts/broker_accounts_t.h"

#include <signal.h>

#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

#include "accounts/broker_hash.h"
#include "fakes/recording_logger_t.h"
#include "kit/free_port.h"
#include "kit/mqtt_client_t.h"
#include "unit/host/broker/plugin/plugin_broker_t.h"

using namespace accounts;

/// A real broker that is configured with the lines from here, and nobody who looks after it.
class tst_broker_accounts_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void users_are_let_in_when_it_says_so();
    void change_before_the_broker_answers_counts();
    void change_is_in_force_when_it_says_so();
    void withdrawal_alone_is_told();
    void bad_user_is_left_out_and_told_once();
    void bad_settings_leave_the_users_alone();
    void ended_broker_is_left_in_peace();
    void next_broker_has_another_password_and_the_same_users();
    void what_happens_at_the_door_is_told();

 private:
    /// Starts the next broker.
    bool launch();
    int code_of(const QString& _name, const QString& _password);

    const QString hash = make_password_hash("x", 10);
    quint16 port = 0;
    std::unique_ptr<process::private_folder_t> folder;
    std::unique_ptr<broker_accounts_t> accounts;
    std::unique_ptr<QSignalSpy> effective;
    QProcess broker;
};

void tst_broker_accounts_t::init() {
    port = kit::free_port();
    folder = std::make_unique<process::private_folder_t>("test");
    QVERIFY(folder->create("nobody").is_ok());
    accounts = std::make_unique<broker_accounts_t>(
        account_settings_t{"@torlan", "home/1/connection"}, *folder);
    effective = std::make_unique<QSignalSpy>(accounts.get(), &broker_accounts_t::effective);
}

void tst_broker_accounts_t::cleanup() {
    accounts.reset();
    broker.kill();
    broker.waitForFinished();
    folder.reset();
}

bool tst_broker_accounts_t::launch() {
    broker.kill();
    broker.waitForFinished();
    accounts->on_broker_launching();
    const QByteArray library = plugin_broker_t::library();
    const bool written =
        folder
            ->write("conf", accounts->configuration(library) + "listener " +
                                QByteArray::number(port) +
                                " 127.0.0.1\nallow_anonymous false\ncheck_retain_source false\n"
                                "user root\n")
            .is_ok();
    broker.start(QStandardPaths::findExecutable("mosquitto", {"/usr/sbin", "/usr/local/sbin"}),
                 {"-c", folder->path("conf")});
    if (!written || !broker.waitForStarted()) {
        return false;
    }
    accounts->on_broker_launched(broker.processId());
    return true;
}

int tst_broker_accounts_t::code_of(const QString& _name, const QString& _password) {
    kit::mqtt_client_t client;
    return client.sign_in(port, _name, _password);
}

void tst_broker_accounts_t::users_are_let_in_when_it_says_so() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(!accounts->is_effective());
    QVERIFY(launch());
    QVERIFY(effective->wait());
    QVERIFY(accounts->is_effective());
    QCOMPARE(code_of("alice", "x"), 0);
    QVERIFY(code_of("bob", "x") > 0);
    QVERIFY(code_of("@torlan", accounts->host_password()) > 0);
    kit::mqtt_client_t host;
    QCOMPARE(host.sign_in_local(accounts->host_socket(), "@torlan", accounts->host_password()), 0);
}

void tst_broker_accounts_t::change_before_the_broker_answers_counts() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(launch());
    QVERIFY(accounts->apply({{"bob", hash}}).is_ok());
    QVERIFY(effective->wait());
    QCOMPARE(code_of("bob", "x"), 0);
    QVERIFY(code_of("alice", "x") > 0);
}

void tst_broker_accounts_t::change_is_in_force_when_it_says_so() {
    QVERIFY(launch());
    QVERIFY(effective->wait());
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(!accounts->is_effective());
    QVERIFY(effective->wait());
    QCOMPARE(code_of("alice", "x"), 0);
    QVERIFY(accounts->apply({}).is_ok());
    QVERIFY(effective->wait());
    QVERIFY(code_of("alice", "x") > 0);
}

void tst_broker_accounts_t::withdrawal_alone_is_told() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(launch());
    QVERIFY(effective->wait());
    QVERIFY(accounts->apply({{"alice", hash}}, {"alice"}).is_ok());
    QVERIFY(!accounts->is_effective());
    QVERIFY(effective->wait());
}

void tst_broker_accounts_t::bad_user_is_left_out_and_told_once() {
    const fakes::recording_logger_t logger;
    const broker_account_t bad{"@torlan", hash};
    QVERIFY(accounts->apply({bad, {"alice", hash}}).is_ok());
    QVERIFY(accounts->apply({bad, {"bob", "secret"}, {"alice", hash}}).is_ok());
    QCOMPARE(logger.lines().size(), 2);
    QVERIFY(logger.lines().last().message.contains("\"bob\""));
    QVERIFY(!logger.lines().last().message.contains("secret"));
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(accounts->apply({bad, {"alice", hash}}).is_ok());
    QCOMPARE(logger.lines().size(), 3);
    QVERIFY(launch());
    QVERIFY(effective->wait());
    QCOMPARE(code_of("alice", "x"), 0);
}

void tst_broker_accounts_t::bad_settings_leave_the_users_alone() {
    broker_accounts_t other({"@torlan", "#"}, *folder);
    QSignalSpy other_effective(&other, &broker_accounts_t::effective);
    QVERIFY(!other.apply({{"alice", hash}}).is_ok());
    QVERIFY(!other.is_effective());
    QVERIFY(other_effective.isEmpty());
}

void tst_broker_accounts_t::ended_broker_is_left_in_peace() {
    QVERIFY(launch());
    accounts->on_broker_ended();
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(!effective->wait(300));
}

void tst_broker_accounts_t::next_broker_has_another_password_and_the_same_users() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(launch());
    QVERIFY(effective->wait());
    const QString former = accounts->host_password();
    QCOMPARE(former.size(), 32);
    QVERIFY(launch());
    QVERIFY(accounts->host_password() != former);
    QVERIFY(effective->wait());
    QCOMPARE(code_of("alice", "x"), 0);
    kit::mqtt_client_t host;
    QVERIFY(host.sign_in_local(accounts->host_socket(), "@torlan", former) > 0);
}

void tst_broker_accounts_t::what_happens_at_the_door_is_told() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(launch());
    QVERIFY(effective->wait());
    QSignalSpy happened(accounts.get(), &broker_accounts_t::happened);
    QVERIFY(code_of("alice", "wrong") > 0);
    QTRY_COMPARE(happened.size(), 1);
    const auto event = happened[0][0].value<broker_event_t>();
    QCOMPARE(event.kind, QString("failed"));
    QCOMPARE(event.user, QString("alice"));
    QCOMPARE(event.address, QString("127.0.0.1"));
}

QTEST_GUILESS_MAIN(tst_broker_accounts_t)
#include "tst_broker_accounts_t.moc"
