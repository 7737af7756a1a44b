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

base::result_t account_keeper_t::start_broker() {
    const auto accounts = read();
    if (!accounts.is_ok()) {
        return accounts;
    }
    const base::result_t started = broker->start(accounts.value);
    return started.is_ok() ? broker->wait_until_listening() : started;
}

void account_keeper_t::update() {
    const auto accounts = read();
    const base::result_t result =
        accounts.is_ok() ? broker->set_accounts(accounts.value) : base::result_t(accounts);
    if (!result.is_ok()) {
        utility::log_line(QStringLiteral("The broker keeps its former users: ") + result.error, 2,
                          "update", source, __LINE__);
    }
}

void account_keeper_t::end_checks() {
    checking = false;
    update();
}

base::result_of_t<QList<accounts::broker_account_t>> account_keeper_t::read() const {
    const auto users = live->read_users();
    if (!users.is_ok()) {
        return users;
    }
    QList<accounts::broker_account_t> accounts;
    for (const database::installation::user_t& user : users.value) {
        accounts.append({user.username, user.password_hash});
    }
    if (checking) {
        accounts.append(
            {account, accounts::make_password_hash(password, accounts::iterations_drawn)});
    }
    return accounts;
}

}  // namespace torlan
