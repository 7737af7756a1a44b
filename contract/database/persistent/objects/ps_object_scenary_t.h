#pragma once

#include <QPointer>
#include <QString>

#include "database/persistent/ps_requests_t.h"

namespace database::persistent::objects {

/// A scenario. Whether it is executed is the realtime side's.
class ps_object_scenary_t {
 public:
    ps_object_scenary_t(QString _id, ps_requests_t* _requests)
        : id(std::move(_id)), requests(_requests) {}

    /// Asks for the execution state; the new state comes back as a change signal.
    void requestSetExecution(bool _execution) {
        if (requests) {
            Q_EMIT requests->scenaryExecutionRequested(id, _execution);
        }
    }

 private:
    QString id;
    QPointer<ps_requests_t> requests;
};

}  // namespace database::persistent::objects
