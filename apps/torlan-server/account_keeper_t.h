#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include "base/result_t.h"
#include "broker/broker_process_t.h"
#include "broker/broker_rights_check_t.h"

namespace database::live {
class live_database_t;
}

namespace torlan {

/// Keeps the broker's accounts those of the installation's users, or one account for the start's
/// own checks as long as they run: nobody is let in before all is there. Main thread; both parts
/// outlive it.
class account_keeper_t : public QObject {
    Q_OBJECT

 public:
    account_keeper_t(broker::broker_process_t* _broker, database::live::live_database_t* _live,
                     QObject* _parent = nullptr);
    ~account_keeper_t() override;

    /// Starts the broker and waits until it listens.
    base::result_t start_broker();

    /// Hands the users as they are now to the broker; a failure goes to the log, and is tried
    /// again.
    void update();

    /// Whether the broker has confirmed the users as they were read last, and they could be read.
    bool is_effective() const { return !lags && broker->is_effective(); }

    /// These users, by id, may read something no longer: nothing that waits for them at the broker
    /// is delivered.
    void withdraw(const QStringList& _users);

    /// Takes the checks' account away, and lets the users in.
    void end_checks();

    /// Of the checks' account. Never log the password.
    QString check_account() const { return account; }
    QString check_password() const { return password; }

 Q_SIGNALS:
    /// Somebody, other than the start's own checks, signed in at the broker, left or was refused.
    void happened(const accounts::broker_event_t& _event);
    /// The users were read again; without the checks' account.
    void users_read(const QList<accounts::broker_account_t>& _before,
                    const QList<accounts::broker_account_t>& _after);

 private:
    base::result_t read();
    QList<accounts::broker_account_t> let_in() const;
    void hand_over(const base::result_t& _read, const QSet<QString>& _withdrawn);
    bool is_check(const accounts::broker_event_t& _event) const;

    broker::broker_process_t* const broker;
    database::live::live_database_t* const live;
    const QString account;
    const QString password;
    const QString password_hash;              ///< another one would make it another account
    QList<accounts::broker_account_t> users;  ///< as read last
    bool checking = true;
    bool lags = false;  ///< the users could not be read, or not be handed over
    QTimer again;       ///< until the next attempt
};

}  // namespace torlan
