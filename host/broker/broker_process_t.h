#pragma once

#include <QList>
#include <QObject>
#include <QProcess>
#include <QTimer>

#include "broker/broker_account_t.h"
#include "broker/broker_files_t.h"
#include "broker/broker_result_t.h"
#include "broker/broker_settings_t.h"
#include "broker/port_probe_t.h"
#include "endpoint/backoff_t.h"

namespace broker {

/// The private broker as a child of the host: started, brought back when it dies, told of
/// changed accounts, and gone when the host is gone, however that ends.
///
/// Lives in the main thread: the kernel ends the child together with the *thread* that started
/// it.
class broker_process_t : public QObject {
    Q_OBJECT

 public:
    explicit broker_process_t(const broker_settings_t& _settings, QObject* _parent = nullptr);
    ~broker_process_t() override;

    /// Starts it for these API users; the host's own account is added. An error here or in
    /// failed(): nothing was left behind. listening() follows otherwise.
    broker_result_t start(const QList<broker_account_t>& _accounts);

    /// Handles events until it listens; bounded by the settings' start time-out.
    broker_result_t wait_until_listening();

    /// The API users from now on. A live connection of a user who is gone, or whose password is
    /// another one, is closed by the broker a moment later.
    broker_result_t set_accounts(const QList<broker_account_t>& _accounts);

    /// Ends it; bounded by the settings' stop time-out.
    void stop();

    bool is_listening() const { return listens; }
    qint64 process_id() const { return process.processId(); }

    /// The host's own password, drawn anew for each object. Never log it.
    QString host_password() const { return password; }

 Q_SIGNALS:
    void listening();
    /// It died after it had listened, and is started again after a pause.
    void died();
    /// It could not be started.
    void failed(const QString& reason);

 private:
    broker_result_t prepare(const QList<broker_account_t>& _accounts);
    broker_result_t write_accounts(const QList<broker_account_t>& _accounts) const;
    void launch();
    void reload() const;
    void on_listening();
    void on_finished();
    void on_late();
    void on_output();
    void give_up(const QString& _reason);
    QString find_executable() const;

    const broker_settings_t settings;
    const QString password;
    const QString password_hash;
    QString executable;
    broker_files_t files;
    QProcess process;
    port_probe_t probe;
    QTimer restart;
    comunication::backoff_t backoff;
    QString last_words;  ///< last line that the broker wrote
    QString why_failed;
    bool wanted = false;  ///< between start() and stop()
    bool listens = false;
    bool stale = false;          ///< the files have changed since it was launched
    bool ever_listened = false;  ///< since start()
};

}  // namespace broker
