#pragma once

#include <QObject>

#include "accounts/broker_accounts_t.h"
#include "base/result_t.h"
#include "broker/broker_settings_t.h"
#include "broker/port_probe_t.h"
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

    /// Starts it for these API users; the host's own account is added. An error here or in
    /// failed(): nothing was left behind. listening() follows otherwise.
    base::result_t start(const QList<accounts::broker_account_t>& _accounts);

    /// Handles events until it listens; bounded by the settings' start time-out.
    base::result_t wait_until_listening();

    /// The API users from now on. A live connection of a user who is gone, or whose password is
    /// another one, is closed by the broker a moment later.
    base::result_t set_accounts(const QList<accounts::broker_account_t>& _accounts);

    /// Ends it; bounded by the settings' stop time-out.
    void stop();

    bool is_listening() const { return child.state() == state_t::ready; }
    qint64 process_id() const { return child.process_id(); }

    /// The host's own password, drawn anew for each object. Never log it.
    QString host_password() const { return who_may.host_password(); }

 Q_SIGNALS:
    void listening();
    /// It died after it had listened, and is started again after a pause.
    void died();
    /// It could not be started.
    void failed(const base::result_t& result);

 private:
    using state_t = process::supervised_process_t::state_t;

    base::result_t prepare(const QList<accounts::broker_account_t>& _accounts);
    void set_up_connections();
    void launch(const QString& _executable);
    void on_died(bool _listened);
    void on_failed(const QString& _last_words);

    const broker_settings_t settings;
    process::private_folder_t folder;
    accounts::broker_accounts_t who_may;
    process::supervised_process_t child;
    port_probe_t probe;
    base::result_t outcome;  ///< of the last start()
};

}  // namespace broker
