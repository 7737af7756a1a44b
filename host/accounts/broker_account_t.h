#pragma once

#include <QString>

namespace accounts {

/// One account of the broker.
struct broker_account_t {
    QString name;           ///< [0-9a-zA-Z._-]+; the host's own account has another form
    QString password_hash;  ///< as of make_password_hash()
    /// Tells a user from a former one of the same name; empty: the name says enough.
    QString id = {};
};

}  // namespace accounts
