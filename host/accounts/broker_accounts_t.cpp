#include "accounts/broker_accounts_t.h"

#include <signal.h>

#include <QSet>
#include <utility>

#include "accounts/broker_hash.h"
#include "base/random_hex.h"
#include "logs/log_line.h"

namespace accounts {

using base::result_t;

namespace {
constexpr const char* source = "host/accounts/broker_accounts_t";
const QString password_name = QStringLiteral("passwords");
const QString acl_name = QStringLiteral("acl");
}  // namespace

broker_accounts_t::broker_accounts_t(const account_settings_t& _settings,
                                     const process::private_folder_t& _folder, QObject* _parent)
    : QObject(_parent),
      settings(_settings),
      folder(_folder),
      password(base::random_hex()),
      password_hash(make_password_hash(password, iterations_drawn)) {}

broker_accounts_t::~broker_accounts_t() = default;

QByteArray broker_accounts_t::configuration() const {
    return "password_file " + folder.path(password_name).toLocal8Bit() + "\nacl_file " +
           folder.path(acl_name).toLocal8Bit() + "\n";
}

result_t broker_accounts_t::apply(const QList<broker_account_t>& _users) {
    if (const result_t checked = check_settings(settings); !checked.is_ok()) {
        return checked;
    }
    sorted_users_t users = sort_users(_users);
    tell_left_out(users.left_out);
    users.fit.append({settings.host_account, password_hash});
    if (const result_t written = folder.write(acl_name, acl_file(settings)); !written.is_ok()) {
        return written;
    }
    if (const result_t written = folder.write(password_name, password_file(users.fit));
        !written.is_ok()) {
        return written;
    }
    if (broker == broker_t::loading) {
        broker = broker_t::outdated;
    } else if (broker == broker_t::listening) {
        tell_broker();
    }
    return {};
}

void broker_accounts_t::tell_left_out(const QStringList& _sentences) {
    const QSet<QString> former(told.cbegin(), told.cend());
    for (const QString& sentence : _sentences) {
        if (!former.contains(sentence)) {
            utility::log_line(sentence, 2, "tell_left_out", source, __LINE__);
        }
    }
    told = _sentences;
}

void broker_accounts_t::on_broker_launching() {
    broker = broker_t::loading;
}

void broker_accounts_t::on_broker_listening(qint64 _process) {
    process_id = _process;
    if (std::exchange(broker, broker_t::listening) == broker_t::outdated) {
        tell_broker();
    } else {
        Q_EMIT effective();
    }
}

void broker_accounts_t::on_broker_ended() {
    broker = broker_t::none;
}

void broker_accounts_t::tell_broker() {
    ::kill(pid_t(process_id), SIGHUP);
    Q_EMIT effective();
}

}  // namespace accounts
