#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

#include "kit/raw_mqtt_t.h"
#include "kit/small_home.h"
#include "system/support/api_user.h"

using namespace kit;
using namespace support;

/// What waits for a client that is not there, when its user's rights change.
class tst_kept_sessions : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void what_waited_before_a_revoke_is_not_delivered_after_it();
    void another_grant_leaves_what_waits();
    void a_user_who_is_created_again_finds_nothing();

 private:
    /// Alice comes with the identifier of her session; empty: it was never answered.
    std::unique_ptr<raw_mqtt_t> come() const;
    /// What waits for her: the lamp's state.
    void leave_something_behind();

    std::unique_ptr<host_process_t> host;
    std::unique_ptr<mqtt_client_t> watcher;  ///< alice, on another device
};

void tst_kept_sessions::init() {
    host = std::make_unique<host_process_t>();
    QVERIFY2(host->import(small_home()), qPrintable(host->error()));
    QVERIFY2(host->start(), qPrintable(host->error()));
    watcher = std::make_unique<mqtt_client_t>();
    QVERIFY(join(*watcher, *host, "alice"));
    leave_something_behind();
}

void tst_kept_sessions::cleanup() {
    watcher.reset();
    host.reset();
}

std::unique_ptr<raw_mqtt_t> tst_kept_sessions::come() const {
    std::unique_ptr<raw_mqtt_t> alice;
    const auto is_let_in = [&]() {
        alice = std::make_unique<raw_mqtt_t>(raw_mqtt_t::way_t::tcp, QString::number(host->port()));
        return alice->connect({.name = "alice",
                               .password = password_of("alice").toUtf8(),
                               .id = "kept",
                               .clean = false,
                               .expiry = 1'000}) == 0;
    };
    return QTest::qWaitFor(is_let_in, 10'000) ? std::move(alice) : nullptr;
}

void tst_kept_sessions::leave_something_behind() {
    const auto alice = come();
    QVERIFY(alice);
    QCOMPARE(alice->subscribe(state_topic("alice", "e-lamp").toUtf8()), 1);
    alice->disconnect();
    QCOMPARE(host->control({"set", "i-lamp", "7"}), 0);
    QVERIFY(watcher->wait_for([](const mqtt_client_t::message_t& _one) {
        return _one.topic == state_topic("alice", "e-lamp") &&
               value_in(_one.json(), "execute") == "7";
    }));
}

void tst_kept_sessions::what_waited_before_a_revoke_is_not_delivered_after_it() {
    QCOMPARE(host->control({"grant", "alice", "e-lamp", "deny"}), 0);
    QVERIFY(watcher->wait_for([](const mqtt_client_t::message_t& _one) {
        return _one.topic == state_topic("alice", "e-lamp") && _one.payload.isEmpty();
    }));
    const auto alice = come();
    QVERIFY(alice);
    QVERIFY(!alice->had_session());
    QVERIFY(alice->received().isEmpty());
}

void tst_kept_sessions::another_grant_leaves_what_waits() {
    QCOMPARE(host->control({"grant", "alice", "e-therm", "readwrite"}), 0);
    QCOMPARE(host->control({"set", "i-dim", "77"}), 0);
    QVERIFY(watcher->wait_for([](const mqtt_client_t::message_t& _one) {
        return _one.topic == state_topic("alice", "e-lamp") && value_in(_one.json(), "dim") == "77";
    }));
    const auto alice = come();
    QVERIFY(alice);
    QVERIFY(alice->had_session());
    QVERIFY(alice->received().size() >= 2);
}

void tst_kept_sessions::a_user_who_is_created_again_finds_nothing() {
    // With the password that she had, all in one change.
    {
        QSqlDatabase shell = QSqlDatabase::addDatabase("QSQLITE", "shell");
        shell.setDatabaseName(host->data() + "/installation.db");
        QVERIFY(shell.open() && shell.transaction());
        QSqlQuery query(shell);
        for (const char* const sql :
             {"CREATE TEMP TABLE former AS SELECT * FROM users WHERE username = 'alice'",
              "DELETE FROM users WHERE username = 'alice'",
              "INSERT INTO users (id, username, password_hash) "
              "SELECT 'u-other', username, password_hash FROM former"}) {
            QVERIFY2(query.exec(sql), qPrintable(query.lastError().text()));
        }
        query.finish();
        QVERIFY(shell.commit());
    }
    QSqlDatabase::removeDatabase("shell");
    QTRY_VERIFY(!watcher->is_connected());
    const auto alice = come();
    QVERIFY(alice);
    QVERIFY(!alice->had_session());
    QVERIFY(alice->received().isEmpty());
}

QTEST_GUILESS_MAIN(tst_kept_sessions)
#include "tst_kept_sessions.moc"
