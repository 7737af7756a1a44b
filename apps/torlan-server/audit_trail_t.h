#pragma once

#include <QObject>
#include <memory>

#include "account_keeper_t.h"
#include "audit/audit_log_t.h"
#include "broker/broker_process_t.h"
#include "endpoint/mqtt_endpoint_t.h"
#include "live/change_feed_t.h"

namespace torlan {

/// Has noted in the audit what the host's parts tell. Whom it follows goes, or is silent, before
/// close(). Main thread.
class audit_trail_t : public QObject {
    Q_OBJECT

 public:
    explicit audit_trail_t(QObject* _parent = nullptr);
    /// close().
    ~audit_trail_t() override;

    /// Begins the audit in @p _folder.
    base::result_t open(const QString& _folder);
    /// Ends it; all that was told is written. May be opened again.
    void close();

    /// Who signs in, leaves, is refused, comes and goes as a user.
    void follow(const account_keeper_t& _accounts, const broker::broker_process_t& _broker);
    /// Requests; those of @p _but_for, the start's own checks, are nobody's.
    void follow(const comunication::mqtt_endpoint_t& _endpoint, const QString& _but_for);
    /// Grants.
    void follow(const database::live::change_feed_t& _feed);

 private:
    void note_exchange(const comunication::exchange_t& _exchange) const;

    std::unique_ptr<audit::audit_log_t> log;
};

}  // namespace torlan
