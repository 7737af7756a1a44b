#include <signal.h>

#include <QFile>
#include <QFileSystemWatcher>
#include <QtTest>

#include "kit/small_home.h"
#include "store/sqlite_store_t.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

namespace {

/// Stops a process for a while.
class held_t {
 public:
    explicit held_t(qint64 _process) : process(pid_t(_process)) { ::kill(process, SIGSTOP); }
    ~held_t() { let_go(); }
    void let_go() const { ::kill(process, SIGCONT); }

 private:
    const pid_t process;
};

}  // namespace

/// What torlanctl changes counts when it returns with 0, and it says so when it does not.
class tst_effect : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void new_user_signs_in_and_removed_one_does_not();
    void former_password_is_of_no_use();
    void state_of_a_withdrawn_grant_is_gone();
    void stopped_server_is_told_and_follows_later();
    void stopped_broker_is_told_and_follows_later();
    void without_a_server_it_is_enough_that_it_is_stored();
    void starting_server_is_waited_for();
    void exchanged_database_is_waited_for();
    void import_is_in_effect();
    void several_callers_are_answered();

 private:
    bool can_sign_in(const QString& _name, const QString& _password) const {
        mqtt_client_t client;
        return client.sign_in(host->port(), _name, _password) == 0;
    }
    /// The lamp's state, as somebody sees who comes now.
    bool sees_lamp(const QString& _name) const {
        mqtt_client_t client;
        // What lies retained comes before the answer.
        return join(client, *host, _name) &&
               !client.request(request_topic(_name, "get")).isEmpty() &&
               client.count(state_topic(_name, "e-lamp")) > 0;
    }

    std::unique_ptr<host_process_t> host;
};

void tst_effect::init() {
    host = std::make_unique<host_process_t>();
    const QJsonObject alice{{"username", "alice"}, {"password", "alice-password"}};
    QVERIFY2(host->import(with(small_home(), "users/u-alice", alice)), qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
}

void tst_effect::cleanup() {
    QCOMPARE(host->stop(), 0);
    QVERIFY(!QFile::exists(host->data() + "/control.sock"));
    host.reset();
}

void tst_effect::new_user_signs_in_and_removed_one_does_not() {
    for (int round = 0; round < 5; ++round) {
        QCOMPARE(host->control({"user", "add", "erin"}, "erin-password\n"), 0);
        QVERIFY(can_sign_in("erin", "erin-password"));
        QCOMPARE(host->control({"user", "remove", "erin"}), 0);
        QVERIFY(!can_sign_in("erin", "erin-password"));
    }
}

void tst_effect::former_password_is_of_no_use() {
    for (const char* const password : {"password-1", "password-2", "password-3"}) {
        QCOMPARE(host->control({"user", "passwd", "alice"}, QByteArray(password) + '\n'), 0);
        QVERIFY(can_sign_in("alice", password));
        QVERIFY(!can_sign_in("alice", "alice-password"));
    }
}

void tst_effect::state_of_a_withdrawn_grant_is_gone() {
    QVERIFY(sees_lamp("alice"));
    QCOMPARE(host->control({"grant", "alice", "e-lamp", "deny"}), 0);
    QVERIFY(!sees_lamp("alice"));
}

void tst_effect::stopped_server_is_told_and_follows_later() {
    const held_t held(host->pid());
    QCOMPARE(host->control({"user", "add", "erin"}, "erin-password\n"), 3);
    QCOMPARE(host->error(), QString("torlanctl: It is stored, but not effective yet: the server, "
                                    "process %1 (torlan-server), does not answer.\n")
                                .arg(host->pid()));
    held.let_go();
    QTRY_VERIFY_WITH_TIMEOUT(can_sign_in("erin", "erin-password"), 20'000);
    QCOMPARE(host->control({"user", "remove", "erin"}), 0);
}

void tst_effect::stopped_broker_is_told_and_follows_later() {
    const held_t held(host->broker_pid());
    QCOMPARE(host->control({"user", "remove", "alice"}), 3);
    QCOMPARE(host->error(),
             "torlanctl: It is stored, but not effective yet: the MQTT broker has "
             "not confirmed its users.\n");
    held.let_go();
    QTRY_VERIFY_WITH_TIMEOUT(!can_sign_in("alice", "alice-password"), 20'000);
    QCOMPARE(host->control({"set", "i-lamp", "1"}), 0);
}

void tst_effect::without_a_server_it_is_enough_that_it_is_stored() {
    host->process().kill();
    QVERIFY(host->process().waitForFinished());
    QVERIFY(QFile::exists(host->data() + "/control.sock"));
    QCOMPARE(host->control({"user", "passwd", "alice"}, "another-password\n"), 0);
    QVERIFY2(host->start(), qPrintable(host->error()));
    QVERIFY(can_sign_in("alice", "another-password"));
    QCOMPARE(host->control({"set", "i-lamp", "1"}), 0);
}

void tst_effect::starting_server_is_waited_for() {
    QCOMPARE(host->stop(), 0);
    QProcess ctl;
    const auto change = [&]() {
        ctl.start(QStringLiteral(TORLANCTL), {"--data", host->data(), "user", "passwd", "alice"});
        ctl.write("while-starting\n");
        ctl.closeWriteChannel();
    };
    // As soon as the folder is taken; the rest of the start takes a second.
    QFileSystemWatcher folder({host->data()});
    connect(&folder, &QFileSystemWatcher::directoryChanged, this, [&]() {
        if (ctl.state() == QProcess::NotRunning && QFile::exists(host->data() + "/control.sock")) {
            folder.removePath(host->data());
            change();
        }
    });
    QVERIFY2(host->start(), qPrintable(host->error()));
    QTRY_COMPARE(ctl.state(), QProcess::NotRunning);
    QCOMPARE(ctl.exitCode(), 0);
    QVERIFY(can_sign_in("alice", "while-starting"));
}

void tst_effect::exchanged_database_is_waited_for() {
    const QString file = host->data() + "/installation.db";
    for (const char* const value : {"1", "0"}) {
        // What its log holds belongs to the former file.
        QTRY_COMPARE_WITH_TIMEOUT(QFileInfo(file + "-wal").size(), 0, 20'000);
        {
            database::store::sqlite_store_t store;
            QVERIFY(store.open(file).is_ok());
            QVERIFY(store.connection().run("VACUUM INTO ?", {file + ".new"}).is_ok());
        }
        QCOMPARE(::rename(qPrintable(file + ".new"), qPrintable(file)), 0);
        QCOMPARE(host->control({"set", "i-lamp", value}), 0);
        mqtt_client_t client;
        QVERIFY(join(client, *host, "alice"));
        QCOMPARE(value_in(client.request(request_topic("alice", "get", "e-lamp")), "execute"),
                 QString(value));
    }
}

void tst_effect::import_is_in_effect() {
    const QJsonObject renamed = with(small_home(), "elements/e-lamp/name", "Renamed");
    const QJsonObject next = with(renamed, "users/u-bob", QJsonValue::Undefined);
    QVERIFY2(host->import(with(next, "permissions/u-bob", QJsonValue::Undefined)),
             qPrintable(host->error()));
    QVERIFY(!can_sign_in("bob", "bob-password"));
    mqtt_client_t client;
    QVERIFY(join(client, *host, "alice"));
    const auto answer = client.request(request_topic("alice", "get", "e-lamp"));
    QCOMPARE(answer["data"]["name"].toString(), "Renamed");
}

void tst_effect::several_callers_are_answered() {
    std::vector<std::unique_ptr<QProcess>> calls;
    for (int i = 0; i < 8; ++i) {
        calls.push_back(std::make_unique<QProcess>());
        calls.back()->start(QStringLiteral(TORLANCTL),
                            {"--data", host->data(), "set", "i-dim", QString::number(i)});
    }
    for (const auto& call : calls) {
        QVERIFY(call->waitForFinished());
        QCOMPARE(call->exitCode(), 0);
    }
}

QTEST_GUILESS_MAIN(tst_effect)
#include "tst_effect.moc"
