#include "account_keeper_t.h"

#include "accounts/broker_hash.h"
#include "base/random_hex.h"
#include "live/live_database_t.h"
#include "logs/log_line.h"

namespace torlan {

namespace {
constexpr const char* source = "apps/torlan-server/account_keeper_t";
}

account_keeper_t::account_keeper_t(broker::broker_process_t* _broker,
                                   database::live::live_database_t* _live, QObject* _parent)
    : QObject(_parent),
      broker(_broker),
      live(_live),
      // Random, so that no user of the installation can have it.
      account(QStringLiteral("check-") + base::random_hex()),
      password(base::random_hex()) {}

account_keeper_t::~account_keeper_t() = default;

QString account_keeper_t::start_broker() {
    QList<accounts::broker_account_t> accounts;
    QString error = read(&accounts);
    if (error.isEmpty()) {
        error = broker->start(accounts).error;
    }
    return error.isEmpty() ? broker->wait_until_listening().error : error;
}

void account_keeper_t::update() {
    QList<accounts::broker_account_t> accounts;
    QString error = read(&accounts);
    if (error.isEmpty()) {
        error = broker->set_accounts(accounts).error;
    }
    if (!error.isEmpty()) {
        utility::log_line(QStringLiteral("The broker keeps its former users: ") + error, 2,
                          "update", source, __LINE__);
    }
}

void account_keeper_t::end_checks() {
    checking = false;
    update();
}

QString account_keeper_t::read(QList<accounts::broker_account_t>* _accounts) const {
    const auto users = live->read_users();
    if (!users.is_ok()) {
        return users.error;
    }
    for (const database::installation::user_t& user : users.value) {
        _accounts->append({user.username, user.password_hash});
    }
    if (checking) {
        _accounts->append(
            {account, accounts::make_password_hash(password, accounts::iterations_drawn)});
    }
    return {};
}

}  // namespace torlan
