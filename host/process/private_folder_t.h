#pragma once

#include <sys/types.h>

#include <QByteArray>
#include <QString>
#include <optional>

#include "base/result_t.h"
#include "process/held_folder_lock_t.h"

namespace process {

/// A system account to which a child is handed over.
struct system_account_t {
    uid_t user;
    gid_t group;
};

/// The private folder of a child's files: nobody else enters it, and it is gone with this object.
/// The files are replaced as a whole, so that a child that reads them never finds half of one.
///
/// When root starts the child as another account, that account can read the files by its group and
/// change nothing: root writes into no folder that another account can write, nor gives away by
/// path what that account could have exchanged. What the child makes itself it makes in a folder
/// inside, which is its own.
class private_folder_t {
 public:
    /// @p _child as people call it, e.g. "broker": part of the folder's name and of the sentences.
    explicit private_folder_t(const QString& _child) : child(_child) {}
    Q_DISABLE_COPY_MOVE(private_folder_t)
    ~private_folder_t();

    /// Makes the folder, and removes those of killed processes. @p _system_account: whom root
    /// starts the child as; others have no choice.
    base::result_t create(const QString& _system_account);

    base::result_t write(const QString& _name, const QByteArray& _text) const;

    QString path(const QString& _name) const { return folder + QLatin1Char('/') + _name; }
    /// In the folder that the child can write.
    QString own_path(const QString& _name) const { return path(QStringLiteral("own/")) + _name; }

    /// Whom the child runs as; nothing: the host's own account.
    const std::optional<system_account_t>& owner() const { return account; }

 private:
    base::result_t failure(const QString& _path) const;
    base::result_t make_own() const;
    void remove();

    const QString child;
    QString folder;
    held_folder_lock_t lock;
    std::optional<system_account_t> account;
};

}  // namespace process
