#pragma once

#include <QByteArray>
#include <QList>

#include "accounts/broker_account_t.h"
#include "base/result_t.h"

namespace accounts {

/// What is the same for all accounts.
struct account_settings_t {
    /// The host's own account, which may read and write everything.
    QString host_account;
    /// Retained state of the host, readable by every API user; empty: none.
    QString connection_topic;
};

/// Whether settings and API users can be written down without changing the meaning of a line: names
/// are one topic level, hashes are hashes, the topic has no wildcard. Pure, as all of these.
base::result_t check_accounts(const account_settings_t& _settings,
                              const QList<broker_account_t>& _accounts);

/// The broker's password file: one line for each account.
QByteArray password_file(const QList<broker_account_t>& _accounts);

/// The broker's access file: who may read and write what.
QByteArray acl_file(const account_settings_t& _settings);

}  // namespace accounts
