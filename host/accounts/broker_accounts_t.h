#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include "accounts/account_text.h"
#include "accounts/broker_control_t.h"
#include "base/backoff_t.h"
#include "process/private_folder_t.h"

namespace accounts {

/// Makes a change of the users count at the broker; nobody else knows how: the plugin in the
/// broker is told over a unix socket in the broker's private folder, and answers.
class broker_accounts_t : public QObject {
    Q_OBJECT

 public:
    /// @p _folder outlives this object and has been created before the first configuration().
    broker_accounts_t(const account_settings_t& _settings, const process::private_folder_t& _folder,
                      QObject* _parent = nullptr);
    ~broker_accounts_t() override;

    /// The lines of the broker's configuration that are about accounts, @p _library the plugin.
    QByteArray configuration(const QByteArray& _library) const;

    /// The API users from now on. One that cannot have an account is left out and told in the log:
    /// it must not keep the others from coming and going. Those of @p _withdrawn may read something
    /// no longer: nothing that waits for them is delivered. effective() follows, as soon as a
    /// broker answers. After an error the former ones stay.
    base::result_t apply(const QList<broker_account_t>& _users,
                         const QSet<QString>& _withdrawn = {});

    /// Readable by every API user from now on, instead of the settings' connection topic.
    base::result_t set_connection_topic(const QString& _topic);

    /// A broker is about to be started: the host's password is another one from now on.
    void on_broker_launching();
    /// It is this process; effective() follows.
    void on_broker_launched(qint64 _process);
    void on_broker_ended();

    /// How the host's own account reaches the broker: the path of a unix socket, and a password
    /// that is drawn anew for each broker. Never log it.
    QString host_socket() const { return folder.own_path(QStringLiteral("host")); }
    QString host_password() const { return password; }

    /// Whether the broker lets in whom apply() told last.
    bool is_effective() const { return control.is_effective(); }

 Q_SIGNALS:
    /// The broker lets in whom apply() told last, and has said so.
    void effective();
    /// A broker that did has not answered for long, however often it was asked. May come again.
    void silent();
    /// Somebody signed in, left or was refused.
    void happened(const accounts::broker_event_t& _event);
    void events_lost(qint64 _count);

 private:
    void set_up_connections();
    void reach();
    void on_lost(const QString& _reason);
    void tell_left_out(const QStringList& _sentences);

    account_settings_t settings;
    const process::private_folder_t& folder;
    QString password;
    broker_control_t control;
    QTimer pause;  ///< until the next attempt to reach it
    base::backoff_t backoff;
    qint64 process_id = 0;  ///< of the broker; 0: none
    bool was_reached = false;
    int unanswered = 0;       ///< attempts since it last said something
    QElapsedTimer last_word;  ///< since then
    QString told_loss;
    QStringList told;  ///< whom the last apply() left out
};

}  // namespace accounts
