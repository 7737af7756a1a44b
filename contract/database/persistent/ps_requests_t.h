#pragma once

#include <QObject>
#include <QString>

namespace database::persistent {

/// Where write requests leave the database, for the host's gate and then whoever owns the items (a
/// bus driver, else the simulated bus), who answers by changing the realtime value. A request only
/// asks; connect queued, so that it never blocks its caller.
class ps_requests_t : public QObject {
    Q_OBJECT

 public:
    explicit ps_requests_t(QObject* _parent = nullptr);
    ~ps_requests_t() override;

 Q_SIGNALS:
    void itemValueRequested(const QString& _id_item, const QString& _value);
    void scenaryExecutionRequested(const QString& _id_scenary, bool _execution);
};

}  // namespace database::persistent
