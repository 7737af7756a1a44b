#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <chrono>

#include "accounts/broker_account_t.h"
#include "base/result_t.h"

namespace accounts {

/// What is the same for all accounts.
struct account_settings_t {
    /// The host's own account, which may read and write everything.
    QString host_account;
    /// Retained state of the host, readable by every API user; empty: none.
    QString connection_topic;
    /// How long the broker keeps the session of a user without a connection.
    std::chrono::seconds session_idle{7 * 24 * 3600};
    /// What one user may publish; 0: no limit.
    int publishes_per_second = 1'000;
    int publish_bytes_per_second = 2 * 1024 * 1024;
    /// Within which the broker answers what it is told, and how often it is asked whether it does.
    std::chrono::milliseconds answer_timeout{5'000};
};

/// What differs from broker to broker.
struct plugin_text_t {
    QByteArray library;  ///< path of the plugin
    QByteArray socket;   ///< path of the socket on which alone the host's account is let in
    QString host_hash;
};

/// Users that can be written down, and a sentence for each that cannot.
struct sorted_users_t {
    QList<broker_account_t> fit;
    QStringList left_out;
};

/// Whether the settings can be written down without changing the meaning of a line. Pure, as all of
/// these.
base::result_t check_settings(const account_settings_t& _settings);

/// The same for each user: its name is an identifier, its hash a hash.
sorted_users_t sort_users(const QList<broker_account_t>& _users);

/// The lines of the broker's configuration that load the plugin.
QByteArray plugin_lines(const account_settings_t& _settings, const plugin_text_t& _text);

}  // namespace accounts
