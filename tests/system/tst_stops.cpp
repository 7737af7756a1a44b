#include <signal.h>

#include <QtTest>

#include "kit/small_home.h"
#include "store/connection_t.h"
#include "system/support/api_user.h"
#include "system/support/database_shell_t.h"

using namespace kit;
using namespace support;

/// How the server ends, and what it does when its database is exchanged.
class tst_stops : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void no_stop_loses_answered_writes_data();
    void no_stop_loses_answered_writes();
    void topic_that_changes_right_before_a_stop_loses_nothing();
    void stop_that_cannot_save_says_so();
    void standard_output_that_nobody_reads_does_not_hold_the_end();
    void database_that_is_deleted_and_imported_anew_is_followed();

 private:
    void write_dim(int _value) {
        alice->request(request_topic("alice", "set", "e-lamp"), write_payload("dim", _value));
        QVERIFY(alice->wait_for(state_topic("alice", "e-lamp")));
    }
    int end_by(int _signal) {
        alice.reset();
        ::kill(pid_t(host->pid()), _signal);
        return host->process().waitForFinished(15000) ? host->process().exitCode() : -1;
    }

    std::unique_ptr<host_process_t> host;
    std::unique_ptr<mqtt_client_t> alice;
};

void tst_stops::init() {
    host = std::make_unique<host_process_t>();
    QVERIFY2(host->import(small_home()), qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
    alice = std::make_unique<mqtt_client_t>();
    QVERIFY(join(*alice, *host, "alice"));
    QVERIFY(alice->wait_for(state_topic("alice", "e-therm")));
    alice->request(request_topic("alice", "get"));
    alice->forget();
}

void tst_stops::cleanup() {
    alice.reset();
    host.reset();
}

void tst_stops::no_stop_loses_answered_writes_data() {
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("Ctrl-\\") << SIGQUIT;
    QTest::newRow("a closed terminal") << SIGHUP;
}

void tst_stops::no_stop_loses_answered_writes() {
    QFETCH(int, number);
    write_dim(88);
    QCOMPARE(end_by(number), 0);
    QCOMPARE(host->control({"export"}), 0);
    const auto home = QJsonDocument::fromJson(host->control_output()).object();
    QCOMPARE(home["items"]["i-dim"]["value"].toString(), "88");
}

void tst_stops::topic_that_changes_right_before_a_stop_loses_nothing() {
    write_dim(88);
    {
        // The server looks for changes once more when nearly all of it has ended.
        const database_shell_t shell(host->data() + "/installation.db");
        QVERIFY(shell.run("UPDATE meta SET value = 'another/home' WHERE key = 'topic'"));
    }
    QCOMPARE(end_by(SIGTERM), 0);
    QCOMPARE(host->process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(host->control({"export"}), 0);
    const auto home = QJsonDocument::fromJson(host->control_output()).object();
    QCOMPARE(home["items"]["i-dim"]["value"].toString(), "88");
    QCOMPARE(home["topic"].toString(), "another/home");
}

void tst_stops::stop_that_cannot_save_says_so() {
    database::store::connection_t lock;
    using access_t = database::store::connection_t::access_t;
    QVERIFY(lock.open(host->data() + "/installation.db", access_t::read_write, 5000).is_ok());
    QVERIFY(lock.run("BEGIN IMMEDIATE").is_ok());
    write_dim(88);
    QCOMPARE(end_by(SIGTERM), 4);
    const QByteArray said = host->process().readAllStandardError();
    QVERIFY2(said.contains("torlan: 1 values are not saved and lost: The database "), said);
}

void tst_stops::standard_output_that_nobody_reads_does_not_hold_the_end() {
    // A level that makes the server say much, to a pipe that is full.
    host.reset();
    host = std::make_unique<host_process_t>();
    QVERIFY(host->import(small_home()));
    QVERIFY2(host->start({"--log-level-std", "6"}), qPrintable(host->error()));
    host->process().closeReadChannel(QProcess::StandardOutput);
    alice = std::make_unique<mqtt_client_t>();
    QVERIFY(join(*alice, *host, "alice"));
    for (int i = 0; i < 50; ++i) {
        write_dim(i);
    }
    QCOMPARE(end_by(SIGTERM), 0);
}

void tst_stops::database_that_is_deleted_and_imported_anew_is_followed() {
    const QString path = host->data() + "/installation.db";
    QVERIFY(QFile::remove(path));
    QVERIFY(host->control({"user", "remove", "bob"}) != 0);
    const QJsonObject home = with(small_home(), "users/u-bob", QJsonValue::Undefined);
    QVERIFY2(host->import(with(home, "permissions/u-bob", QJsonValue::Undefined)),
             qPrintable(host->error()));
    mqtt_client_t bob;
    QTRY_VERIFY_WITH_TIMEOUT(mqtt_client_t().sign_in(host->port(), "bob", password_of("bob")) != 0,
                             10000);
    QCOMPARE(host->control({"set", "i-dim", "55"}), 0);
    if (!alice->is_connected()) {
        QVERIFY(join(*alice, *host, "alice"));
    }
    QTRY_COMPARE_WITH_TIMEOUT(
        value_in(alice->request(request_topic("alice", "get", "e-lamp")), "dim"), "55", 10000);
    write_dim(66);
    QCOMPARE(end_by(SIGTERM), 0);
    QCOMPARE(host->control({"export"}), 0);
    const auto saved = QJsonDocument::fromJson(host->control_output()).object();
    QCOMPARE(saved["items"]["i-dim"]["value"].toString(), "66");
    QVERIFY(!saved["users"].toObject().contains("u-bob"));
}

QTEST_GUILESS_MAIN(tst_stops)
#include "tst_stops.moc"
