#pragma once

#include <QPointer>
#include <QString>

#include "database/persistent/ps_requests_t.h"

namespace database::persistent::objects {

/// A data point of the installation. Its value is the realtime side's.
class ps_object_item_t {
 public:
    ps_object_item_t(QString _id, ps_requests_t* _requests)
        : id(std::move(_id)), requests(_requests) {}

    /// Asks the item's owner for a new value; the value comes back as a change signal.
    void requestSetValue(const QString& _value) {
        if (requests) {
            Q_EMIT requests->itemValueRequested(id, _value);
        }
    }

 private:
    QString id;
    QPointer<ps_requests_t> requests;
};

}  // namespace database::persistent::objects
