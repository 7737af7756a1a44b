#pragma once

#include <QObject>
#include <QString>

#include "base/result_t.h"
#include "broker/broker_process_t.h"
#include "broker/broker_rights_check_t.h"

namespace database::live {
class live_database_t;
}

namespace torlan {

/// Keeps the broker's accounts those of the installation's users, plus one account for the
/// start's own checks as long as they run. Main thread; both parts outlive it.
class account_keeper_t : public QObject {
    Q_OBJECT

 public:
    account_keeper_t(broker::broker_process_t* _broker, database::live::live_database_t* _live,
                     QObject* _parent = nullptr);
    ~account_keeper_t() override;

    /// Starts the broker and waits until it listens.
    base::result_t start_broker();

    /// Hands the users as they are now to the broker; a failure goes to the log.
    void update();

    /// Takes the checks' account away.
    void end_checks();

    /// Of the checks' account. Never log the password.
    QString check_account() const { return account; }
    QString check_password() const { return password; }

 private:
    base::result_of_t<QList<accounts::broker_account_t>> read() const;

    broker::broker_process_t* const broker;
    database::live::live_database_t* const live;
    const QString account;
    const QString password;
    bool checking = true;
};

}  // namespace torlan
