#include <signal.h>
#include <unistd.h>

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include "accounts/broker_accounts_t.h"
#include "accounts/broker_hash.h"
#include "fakes/recording_logger_t.h"

using namespace accounts;

namespace {

volatile sig_atomic_t signals_seen = 0;

QByteArray read_file(const QString& _path) {
    QFile file(_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

/// The test stands for the broker: it gets its signals.
class tst_broker_accounts_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void init();
    void configuration_names_the_files();
    void files_hold_the_users_and_the_host();
    void bad_user_is_left_out_and_told_once();
    void bad_settings_leave_the_files_alone();
    void broker_that_starts_finds_the_files();
    void change_while_the_broker_loads_is_told_when_it_listens();
    void listening_broker_is_told_at_once();
    void ended_broker_is_left_in_peace();
    void passwords_of_the_host_differ();

 private:
    QByteArray passwords() const { return read_file(folder->path("passwords")); }

    const QString hash = make_password_hash("x", 1);
    std::unique_ptr<process::private_folder_t> folder;
    std::unique_ptr<broker_accounts_t> accounts;
    std::unique_ptr<QSignalSpy> effective;
};

void tst_broker_accounts_t::initTestCase() {
    ::signal(SIGHUP, [](int) { signals_seen = signals_seen + 1; });
}

void tst_broker_accounts_t::init() {
    signals_seen = 0;
    folder = std::make_unique<process::private_folder_t>("test");
    QVERIFY(folder->create("nobody").is_ok());
    accounts = std::make_unique<broker_accounts_t>(
        account_settings_t{"@torlan", "home/1/connection"}, *folder);
    effective = std::make_unique<QSignalSpy>(accounts.get(), &broker_accounts_t::effective);
}

void tst_broker_accounts_t::configuration_names_the_files() {
    QCOMPARE(accounts->configuration(), "password_file " + folder->path("passwords").toUtf8() +
                                            "\nacl_file " + folder->path("acl").toUtf8() + "\n");
}

void tst_broker_accounts_t::files_hold_the_users_and_the_host() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    const QList<QByteArray> lines = passwords().split('\n');
    QCOMPARE(lines.size(), 3);
    QCOMPARE(lines[0], "alice:" + hash.toUtf8());
    QVERIFY(lines[1].startsWith("@torlan:"));
    QVERIFY(verify_password(accounts->host_password(), lines[1].mid(8)));
    QCOMPARE(read_file(folder->path("acl")), acl_file({"@torlan", "home/1/connection"}));
}

void tst_broker_accounts_t::bad_user_is_left_out_and_told_once() {
    const fakes::recording_logger_t logger;
    const broker_account_t bad{"@torlan", hash};
    QVERIFY(accounts->apply({bad, {"alice", hash}}).is_ok());
    QCOMPARE(passwords().split('\n').size(), 3);
    QVERIFY(passwords().startsWith("alice:"));
    QVERIFY(accounts->apply({bad, {"bob", "secret"}}).is_ok());
    QCOMPARE(passwords().split('\n').size(), 2);
    QCOMPARE(logger.lines().size(), 2);
    QVERIFY(logger.lines().last().message.contains("\"bob\""));
    QVERIFY(!logger.lines().last().message.contains("secret"));
    QVERIFY(accounts->apply({}).is_ok());
    QVERIFY(accounts->apply({bad}).is_ok());
    QCOMPARE(logger.lines().size(), 3);
}

void tst_broker_accounts_t::bad_settings_leave_the_files_alone() {
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    broker_accounts_t other({"@torlan", "#"}, *folder);
    other.on_broker_launching();
    other.on_broker_listening(::getpid());
    const QByteArray before = passwords();
    QVERIFY(!other.apply({}).is_ok());
    QCOMPARE(passwords(), before);
    QCOMPARE(int(signals_seen), 0);
}

void tst_broker_accounts_t::broker_that_starts_finds_the_files() {
    QVERIFY(accounts->apply({}).is_ok());
    accounts->on_broker_launching();
    QCOMPARE(effective->size(), 0);
    accounts->on_broker_listening(::getpid());
    QCOMPARE(effective->size(), 1);
    QCOMPARE(int(signals_seen), 0);
}

void tst_broker_accounts_t::change_while_the_broker_loads_is_told_when_it_listens() {
    accounts->on_broker_launching();
    QVERIFY(accounts->apply({}).is_ok());
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QCOMPARE(int(signals_seen), 0);
    QCOMPARE(effective->size(), 0);
    accounts->on_broker_listening(::getpid());
    QCOMPARE(int(signals_seen), 1);
    QCOMPARE(effective->size(), 1);
}

void tst_broker_accounts_t::listening_broker_is_told_at_once() {
    accounts->on_broker_launching();
    accounts->on_broker_listening(::getpid());
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QCOMPARE(int(signals_seen), 1);
    QCOMPARE(effective->size(), 2);
}

void tst_broker_accounts_t::ended_broker_is_left_in_peace() {
    accounts->on_broker_launching();
    accounts->on_broker_listening(::getpid());
    accounts->on_broker_ended();
    QVERIFY(accounts->apply({{"alice", hash}}).is_ok());
    QVERIFY(passwords().startsWith("alice:"));
    QCOMPARE(int(signals_seen), 0);
    QCOMPARE(effective->size(), 1);
}

void tst_broker_accounts_t::passwords_of_the_host_differ() {
    const broker_accounts_t other({"@torlan", {}}, *folder);
    QCOMPARE(other.host_password().size(), 32);
    QVERIFY(other.host_password() != accounts->host_password());
}

QTEST_GUILESS_MAIN(tst_broker_accounts_t)
#include "tst_broker_accounts_t.moc"
