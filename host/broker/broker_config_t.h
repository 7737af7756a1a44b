#pragma once

#include <QByteArray>
#include <QList>

#include "broker/broker_account_t.h"
#include "broker/broker_result_t.h"
#include "broker/broker_settings_t.h"

namespace broker {

/// The text of the broker's files. Pure functions.
struct broker_config_t {
    /// Whether the settings and accounts can be written down without changing the meaning of a
    /// line: names are one topic level, hashes are hashes, the topic has no wildcard.
    static broker_result_t check(const broker_settings_t& _settings,
                                 const QList<broker_account_t>& _accounts);

    /// mosquitto.conf, with the paths of the other two files.
    static QByteArray configuration(const broker_settings_t& _settings,
                                    const QString& _password_file, const QString& _acl_file);

    /// One line for each account.
    static QByteArray password_file(const QList<broker_account_t>& _accounts);

    /// Who may read and write what.
    static QByteArray acl_file(const broker_settings_t& _settings);
};

}  // namespace broker
