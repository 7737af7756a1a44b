#include "bench/cases/raw_broker_t.h"

#include "accounts/broker_hash.h"
#include "kit/free_port.h"
#include "kit/password_of.h"

namespace bench {

namespace {

broker::broker_settings_t settings_without_meter() {
    broker::broker_settings_t made;
    made.port = kit::free_port();
    made.start_timeout = std::chrono::minutes(1);  // the machine may be busy
    made.publishes_per_second = 0;
    made.publish_bytes_per_second = 0;
    return made;
}

}  // namespace

raw_broker_t::raw_broker_t(const QStringList& _users)
    : users(_users), settings(settings_without_meter()), process(settings) {}

base::result_t raw_broker_t::start() {
    QList<accounts::broker_account_t> accounts;
    for (const QString& name : users) {
        accounts.append({name, accounts::make_password_hash(kit::password_of(name))});
    }
    const base::result_t started = process.start(accounts);
    return started.is_ok() ? process.wait_until_listening() : started;
}

door_t raw_broker_t::door(const QString& _user) const {
    return {"127.0.0.1", settings.port, _user.toStdString(), kit::password_of(_user).toStdString()};
}

door_t raw_broker_t::host_door() const {
    return {process.host_socket().toStdString(), 0, settings.host_account.toStdString(),
            process.host_password().toStdString()};
}

}  // namespace bench
