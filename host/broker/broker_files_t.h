#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "broker/broker_result_t.h"

namespace broker {

/// A system account to which the broker is handed over.
struct system_account_t {
    uid_t user;
    gid_t group;
};

/// The private folder of the broker's files: 0700, gone with this object. Its files are 0600 and
/// replaced as a whole, so that a broker that reads them never finds half of one.
class broker_files_t {
 public:
    /// Makes the folder. Root hands it to the account @p _system_account; others keep it.
    broker_result_t create(const QString& _system_account);

    broker_result_t write(const QString& _name, const QByteArray& _text) const;

    QString path(const QString& _name) const { return folder->filePath(_name); }

    /// Whom the files belong to; nothing: the host's own account.
    const std::optional<system_account_t>& owner() const { return account; }

 private:
    broker_result_t hand_over(const QString& _path) const;

    std::unique_ptr<QTemporaryDir> folder;
    std::optional<system_account_t> account;
};

}  // namespace broker
