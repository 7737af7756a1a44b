#pragma once

#include <QObject>

#include "database/persistent/persistent_t.h"
#include "database/realtime/realtime_t.h"

namespace database {

/// The installation as objects in memory. Drivers hold it through a QPointer; both sides live as
/// long as it does. Host thread only.
class database_t : public QObject {
    Q_OBJECT

 public:
    explicit database_t(QObject* _parent = nullptr);
    ~database_t() override;

    persistent::persistent_t* getPersistent() const { return persistent_side; }
    realtime::realtime_t* getRealtime() const { return realtime_side; }

 private:
    persistent::persistent_t* const persistent_side;
    realtime::realtime_t* const realtime_side;
};

}  // namespace database
