#pragma once

#include <QObject>

#include "accounts/broker_accounts_t.h"
#include "base/result_t.h"
#include "broker/broker_settings_t.h"
#include "broker/plugin_file_t.h"
#include "process/supervised_process_t.h"

namespace broker {

/// The private broker as a child of the host: started, brought back when it dies, told of
/// changed accounts, and gone when the host is gone, however that ends. Lives in the main thread,
/// see process::supervised_process_t.
class broker_process_t : public QObject {
    Q_OBJECT

 public:
    explicit broker_process_t(const broker_settings_t& _settings, QObject* _parent = nullptr);
    ~broker_process_t() override;

    /// Starts it for these API users. An error here or in failed(): nothing was left behind.
    /// listening() follows otherwise.
    base::result_t start(const QList<accounts::broker_account_t>& _accounts);

    /// Handles events until it answers and knows the users; bounded by the settings' start
    /// time-out.
    base::result_t wait_until_listening();

    /// The API users from now on, see accounts::broker_accounts_t; effective() follows. A live
    /// connection of a user who is gone, or whose password is another one, is closed then.
    base::result_t set_accounts(const QList<accounts::broker_account_t>& _accounts,
                                const QSet<QString>& _withdrawn = {});
    /// Whether the broker has said that it lets in whom it was told last.
    bool is_effective() const { return who_may.is_effective(); }

    /// Every user may read this topic from now on, instead of the settings'.
    base::result_t set_connection_topic(const QString& _topic) {
        return who_may.set_connection_topic(_topic);
    }

    /// Ends it; bounded by the settings' stop time-out.
    void stop();

    bool is_listening() const { return child.state() == state_t::ready; }
    qint64 process_id() const { return child.process_id(); }

    /// How the host's own account reaches it: over this unix socket, with a password that is drawn
    /// anew for each life of the broker and told to process_id() only. Never log it.
    QString host_socket() const { return who_may.host_socket(); }
    QString host_password() const { return who_may.host_password(); }

 Q_SIGNALS:
    /// It knows its users and has said so: for the first time or in another life.
    void listening();
    void effective();
    /// Somebody signed in, left or was refused.
    void happened(const accounts::broker_event_t& _event);
    /// Too much happened to be told one by one.
    void events_lost(qint64 _count);
    /// It died after it had listened, and is started again after a pause.
    void died();
    /// It could not be started.
    void failed(const base::result_t& result);

 private:
    using state_t = process::supervised_process_t::state_t;

    base::result_t prepare(const QList<accounts::broker_account_t>& _accounts);
    void set_up_connections();
    base::result_t write_configuration() const;
    void launch(const QString& _executable);
    void tell_taken_port();
    void on_died(bool _listened);
    void on_failed(const QString& _last_words);

    const broker_settings_t settings;
    process::private_folder_t folder;
    accounts::broker_accounts_t who_may;
    process::supervised_process_t child;
    plugin_file_t plugin;
    base::result_t outcome;  ///< of the last start()
    QString told_port;       ///< the last sentence about one that is taken
};

}  // namespace broker
