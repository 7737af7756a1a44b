#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "base/result_t.h"

namespace process {

/// A system account to which a child is handed over.
struct system_account_t {
    uid_t user;
    gid_t group;
};

/// The private folder of a child's files: 0700, gone with this object. Its files are 0600 and
/// replaced as a whole, so that a child that reads them never finds half of one.
class private_folder_t {
 public:
    /// @p _child as people call it, e.g. "broker": part of the folder's name and of the sentences.
    explicit private_folder_t(const QString& _child) : child(_child) {}

    /// Makes the folder. Root hands it to the account @p _system_account; others keep it.
    base::result_t create(const QString& _system_account);

    base::result_t write(const QString& _name, const QByteArray& _text) const;

    QString path(const QString& _name) const { return folder->filePath(_name); }

    /// Whom the files belong to; nothing: the host's own account.
    const std::optional<system_account_t>& owner() const { return account; }

 private:
    base::result_t failure(const QString& _path) const;
    base::result_t hand_over(const QString& _path) const;

    const QString child;
    std::unique_ptr<QTemporaryDir> folder;
    std::optional<system_account_t> account;
};

}  // namespace process
