#pragma once

#include "accounts/broker_hash.h"
#include "broker/broker_process_t.h"
#include "endpoint/endpoint_settings_t.h"
#include "kit/free_port.h"
#include "kit/mqtt_client_t.h"
#include "kit/password_of.h"

namespace kit {

/// The real broker on a free port, with the users "alice" and "bob".
class real_broker_t {
 public:
    /// The same hash for the same password: another one would be another account.
    static accounts::broker_account_t account(const QString& _name, const QString& _password = {}) {
        static QHash<QString, QString> hashes;
        const QString password = _password.isEmpty() ? password_of(_name) : _password;
        if (!hashes.contains(password)) {
            hashes.insert(password, accounts::make_password_hash(password, 10));
        }
        return {_name, hashes.value(password)};
    }

    static QList<accounts::broker_account_t> both() {
        return {account(QStringLiteral("alice")), account(QStringLiteral("bob"))};
    }

    explicit real_broker_t(const broker::broker_settings_t& _settings = make_settings())
        : settings(_settings), process(_settings) {}

    static broker::broker_settings_t make_settings() {
        broker::broker_settings_t made;
        made.port = free_port();
        made.connection_topic = QStringLiteral("home/1/connection");
        made.restart_shortest = made.restart_longest = std::chrono::milliseconds(50);
        return made;
    }

    /// Empty: it listens.
    QString start() {
        const base::result_t started = process.start(both());
        return started.is_ok() ? process.wait_until_listening().error : started.error;
    }

    /// Signs the host's own account in: its reason code, 0 accepted.
    int let_host_in(mqtt_client_t* _client) const {
        return _client->sign_in_local(process.host_socket(), settings.host_account,
                                      process.host_password());
    }

    comunication::endpoint_settings_t endpoint_settings() const {
        comunication::endpoint_settings_t made;
        made.host = process.host_socket();
        made.port = 0;
        made.broker_process = process.process_id();
        made.username = settings.host_account;
        made.password = process.host_password();
        made.connection_topic = settings.connection_topic;
        made.reconnect_shortest = made.reconnect_longest = std::chrono::milliseconds(20);
        return made;
    }

    const broker::broker_settings_t settings;
    broker::broker_process_t process;
};

}  // namespace kit
