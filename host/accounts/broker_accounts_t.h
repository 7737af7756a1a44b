#pragma once

#include <QObject>

#include "accounts/account_text.h"
#include "process/private_folder_t.h"

namespace accounts {

/// Makes a change of the users count at the broker; nobody else knows how. Today: files that the
/// broker reads when it starts and when it gets a signal.
class broker_accounts_t : public QObject {
    Q_OBJECT

 public:
    /// @p _folder outlives this object and has been created before the first apply().
    broker_accounts_t(const account_settings_t& _settings, const process::private_folder_t& _folder,
                      QObject* _parent = nullptr);
    ~broker_accounts_t() override;

    /// The lines of the broker's configuration that are about accounts.
    QByteArray configuration() const;

    /// The API users from now on; the host's own account is added. One that cannot have an account
    /// is left out and told in the log: it must not keep the others from coming and going.
    /// effective() follows, as soon as a broker listens. After an error the former ones stay.
    base::result_t apply(const QList<broker_account_t>& _users);

    /// A broker of this configuration is about to be started.
    void on_broker_launching();
    /// It answers; effective() follows.
    void on_broker_listening(qint64 _process);
    void on_broker_ended();

    /// Of the host's own account, drawn anew for each object. Never log it.
    QString host_password() const { return password; }

 Q_SIGNALS:
    /// The broker lets in whom apply() told last. A signal has no answer: a broker that was
    /// listening acts on it a moment later.
    void effective();

 private:
    enum class broker_t {
        none,
        loading,    ///< launched, and has read its files or will
        outdated,   ///< launched, and the files have changed since
        listening,  ///< handles signals; before that one would end it
    };

    void tell_left_out(const QStringList& _sentences);
    void tell_broker();

    const account_settings_t settings;
    const process::private_folder_t& folder;
    const QString password;
    const QString password_hash;
    broker_t broker = broker_t::none;
    qint64 process_id = 0;  ///< of the broker while it listens
    QStringList told;       ///< whom the last apply() left out
};

}  // namespace accounts
