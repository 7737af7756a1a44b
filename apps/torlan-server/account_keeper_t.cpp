#include "account_keeper_t.h"

#include "accounts/broker_hash.h"
#include "base/random_hex.h"
#include "live/live_database_t.h"
#include "logs/log_line.h"

#include <utility>

namespace torlan {

namespace {
constexpr const char* source = "apps/torlan-server/account_keeper_t";
constexpr std::chrono::milliseconds pause{500};
}  // namespace

account_keeper_t::account_keeper_t(broker::broker_process_t* _broker,
                                   database::live::live_database_t* _live, QObject* _parent)
    : QObject(_parent),
      broker(_broker),
      live(_live),
      // Random, so that no user of the installation can have it.
      account(QStringLiteral("check-") + base::random_hex()),
      password(base::random_hex()),
      password_hash(accounts::make_password_hash(password, accounts::iterations_drawn)),
      again(this) {
    again.setSingleShot(true);
    again.setInterval(pause);
    connect(&again, &QTimer::timeout, this, &account_keeper_t::update);
    connect(broker, &broker::broker_process_t::happened, this,
            [this](const accounts::broker_event_t& _event) {
                if (!is_check(_event)) {
                    Q_EMIT happened(_event);
                }
            });
}

account_keeper_t::~account_keeper_t() = default;

/// The checks try what must be refused, with their name or with none, but always the same
/// identifier.
bool account_keeper_t::is_check(const accounts::broker_event_t& _event) const {
    return _event.user == account || (_event.user.isEmpty() && _event.client == account);
}

base::result_t account_keeper_t::start_broker() {
    if (const base::result_t known = read(); !known.is_ok()) {
        return known;
    }
    const base::result_t started = broker->start(let_in());
    return started.is_ok() ? broker->wait_until_listening() : started;
}

void account_keeper_t::update() {
    const QList<accounts::broker_account_t> before = users;
    const base::result_t known = read();
    lags = lags && !known.is_ok();
    hand_over(known, {});
    if (known.is_ok()) {
        Q_EMIT users_read(before, users);
    }
}

QList<accounts::broker_account_t> account_keeper_t::let_in() const {
    return checking ? QList<accounts::broker_account_t>{{account, password_hash, {}}} : users;
}

void account_keeper_t::withdraw(const QStringList& _users) {
    const QSet<QString> ids(_users.cbegin(), _users.cend());
    QSet<QString> names;
    for (const accounts::broker_account_t& user : std::as_const(users)) {
        if (ids.contains(user.id)) {
            names.insert(user.name);
        }
    }
    hand_over({}, names);
}

void account_keeper_t::hand_over(const base::result_t& _read, const QSet<QString>& _withdrawn) {
    const base::result_t result =
        _read.is_ok() ? broker->set_accounts(let_in(), _withdrawn) : _read;
    if (result.is_ok()) {
        return;
    }
    again.start();
    if (!std::exchange(lags, true)) {
        utility::log_line(QStringLiteral("The broker keeps its former users: ") + result.error, 2,
                          "hand_over", source, __LINE__);
    }
}

void account_keeper_t::end_checks() {
    checking = false;
    update();
}

base::result_t account_keeper_t::read() {
    const auto stored = live->read_users();
    if (!stored.is_ok()) {
        return stored;
    }
    users.clear();
    for (auto each = stored.value.begin(); each != stored.value.end(); ++each) {
        users.append({each->username, each->password_hash, each.key()});
    }
    return {};
}

}  // namespace torlan
