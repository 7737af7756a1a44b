#include "account_keeper_t.h"

#include <QSignalSpy>
#include <QTest>
#include <algorithm>

#include "fakes/recording_logger_t.h"
#include "kit/real_broker_t.h"
#include "kit/sample_installation.h"
#include "live/live_database_t.h"

using torlan::account_keeper_t;

/// With a real broker and a real database; nothing but the keeper itself makes it look again.
class tst_account_keeper_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init();
    void cleanup();
    void users_that_could_not_be_read_are_read_again();
    void former_users_stay_until_then();

 private:
    /// Adds one who can sign in with the password of the test kit.
    bool add(const QString& _name) const {
        return other->write(
            {QStringLiteral("INSERT INTO users VALUES ('u-%1', '%1', '%2')")
                 .arg(_name, accounts::make_password_hash(kit::password_of(_name), 10))});
    }
    bool hide_users() const { return other->write({"ALTER TABLE users RENAME TO people"}); }
    bool show_users() const { return other->write({"ALTER TABLE people RENAME TO users"}); }
    int sign_in(const QString& _name) const {
        kit::mqtt_client_t client;
        return client.sign_in(settings.port, _name, kit::password_of(_name));
    }
    qsizetype told() const {
        const auto lines = logger->lines();
        return std::count_if(lines.begin(), lines.end(), [](const auto& _line) {
            return _line.message.startsWith("The broker keeps its former users: ");
        });
    }

    std::unique_ptr<fakes::recording_logger_t> logger;
    std::unique_ptr<sample::file_t> file;
    std::unique_ptr<sample::foreign_writer_t> other;
    database::database_t database;
    std::unique_ptr<database::live::live_database_t> live;
    broker::broker_settings_t settings;
    std::unique_ptr<broker::broker_process_t> broker;
    std::unique_ptr<account_keeper_t> keeper;
};

void tst_account_keeper_t::init() {
    logger = std::make_unique<fakes::recording_logger_t>();
    file = std::make_unique<sample::file_t>();
    other = std::make_unique<sample::foreign_writer_t>(file->path());
    QVERIFY(add("carol"));
    live = std::make_unique<database::live::live_database_t>(
        &database, database::live::live_database_t::options_t());
    QCOMPARE(live->open(file->path()).error, QString());
    settings = kit::real_broker_t::make_settings();
    broker = std::make_unique<broker::broker_process_t>(settings);
    keeper = std::make_unique<account_keeper_t>(broker.get(), live.get());
    QCOMPARE(keeper->start_broker().error, QString());
    keeper->end_checks();
    QTRY_VERIFY(keeper->is_effective());
}

void tst_account_keeper_t::cleanup() {
    keeper.reset();
    broker.reset();
    live.reset();
    other.reset();
    file.reset();
    logger.reset();
}

void tst_account_keeper_t::users_that_could_not_be_read_are_read_again() {
    QVERIFY(hide_users());
    keeper->update();
    QVERIFY(!keeper->is_effective());
    QVERIFY2(show_users() && add("erin"), qPrintable(other->error));
    QTRY_VERIFY(keeper->is_effective());
    QCOMPARE(sign_in("erin"), 0);
    QCOMPARE(told(), 1);
}

void tst_account_keeper_t::former_users_stay_until_then() {
    QVERIFY(hide_users());
    QSignalSpy read(keeper.get(), &account_keeper_t::users_read);
    keeper->update();
    keeper->update();
    QCOMPARE(sign_in("carol"), 0);
    QVERIFY(sign_in("erin") != 0);
    QVERIFY(read.isEmpty());
    QCOMPARE(told(), 1);
    QVERIFY(show_users());
    QVERIFY(read.wait());
    QTRY_VERIFY(keeper->is_effective());
    QCOMPARE(sign_in("carol"), 0);
}

QTEST_GUILESS_MAIN(tst_account_keeper_t)
#include "tst_account_keeper_t.moc"
